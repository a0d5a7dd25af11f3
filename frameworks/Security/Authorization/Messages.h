// SPDX-License-Identifier: MIT
// What is said between a process and the program that has its rights: a byte when that is ready,
// then commands, each answered by the status with which its program ended. A command is its length
// and its words, each with a zero byte at its end.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace security {

inline constexpr char kReady = '+';

// Whole. Fails: false, also at the end of the file. Safe after a fork.
bool readBytes(int descriptor, void* bytes, size_t size);
bool writeBytes(int descriptor, const void* bytes, size_t size);

std::string requestOf(const std::vector<std::string>& words);

// Waits for a command. Fails: nothing, for what is no command, and at the end.
std::vector<std::string> readRequest(int descriptor);

}  // namespace security
