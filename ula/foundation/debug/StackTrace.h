// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/Export.h"

#include <array>
#include <cstddef>
#include <pthread.h>
#include <string>

namespace tav::debug {

/// The calls that led to a place. Capturing is cheap; the names are looked up by `toString`.
class TAV_FOUNDATION_API StackTrace {
public:
    /// The calling thread's stack, without this function's own frame.
    static StackTrace capture();
    /// Another thread's stack, taken by a signal that interrupts it for a moment (system calls
    /// that cannot be resumed return EINTR). The first of the last eight real-time signals that
    /// nobody handles is used, from the first call to the end of the process.
    /// Fails: empty when the thread does not answer within a second, or no signal is free.
    /// Thread: any but that one; the other thread must live.
    static StackTrace captureOf(pthread_t thread);
    bool empty() const { return _count == 0; }

    /// One frame a line, innermost first: number, function (as C++ spells it), and file and line
    /// where debug information has them, else the module. Also names functions that are not
    /// exported, from the modules' symbol tables.
    /// Thread: any; one at a time looks names up.
    std::string toString() const;

private:
    static constexpr std::size_t kDeepest = 64;

    std::array<void*, kDeepest> _frames{};
    std::size_t _count = 0;
};

}  // namespace tav::debug
