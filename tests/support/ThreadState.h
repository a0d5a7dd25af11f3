// SPDX-License-Identifier: MIT
#pragma once

#include <fstream>
#include <string>
#include <sys/types.h>

namespace tav::test {

/// Whether a thread of this process waits for something. False where there is none of that number.
inline bool isAsleep(pid_t thread) {
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string text;
    std::getline(file, text);
    return text.find(") S ") != std::string::npos;
}

}  // namespace tav::test
