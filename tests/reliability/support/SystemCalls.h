// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <limits>
#include <string>
#include <vector>

/// Stands between the library and the kernel: a program that links SystemCalls.cpp can make any
/// system call of a save fail. Its definitions come before the C library's (and before the
/// sanitizers', which are weak) for every shared library of the program.
/// Thread: one.
namespace tav::test {

struct SystemCall {
    std::string name;
    std::string path;  ///< what the call names, "from -> to" where it names two
};

struct FaultPlan {
    int failAt = 0;  ///< the call that fails, counted from 1; 0: none does
    int errorNumber = 0;
    std::size_t longestWrite = std::numeric_limits<std::size_t>::max();
    /// Runs before each call, whose own calls are not counted.
    std::function<void(const SystemCall&)> before;
};

/// Runs `save` and returns the calls that it made.
std::vector<SystemCall> runWithFaults(const FaultPlan& plan, const std::function<void()>& save);

/// False: opening with O_TMPFILE fails with EOPNOTSUPP from now on, as on file systems without
/// unnamed files.
void allowUnnamedFiles(bool allow);

}  // namespace tav::test
