// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace coreservices {

// Runs a program of the system, without a terminal and without output, and waits for its end.
// Fails: false when it cannot be started, ends with an error, or takes longer; it is then ended.
bool runProgram(const std::vector<std::string>& arguments, std::chrono::milliseconds patience);

}  // namespace coreservices
