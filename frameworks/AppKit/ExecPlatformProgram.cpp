// SPDX-License-Identifier: MIT
#include "AppKit/ExecPlatformProgram.h"

#include "AppKit/PlatformPrograms.h"

#include <charconv>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

namespace appkit {

namespace {

constexpr char kOpen[] = "/usr/bin/open";

// Found when the library is loaded: between fork and exec it is too late. Never destroyed, as
// programs are run at the very end.
const std::string& openProgram = *new std::string(platformProgram(kOpen));

// The child is still a copy of the program that wants to be opened anew, and says which one it is
// while that can be known for sure.
int execOpen(char* const arguments[]) {
    char program[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", program, sizeof program - 1);
    program[length > 0 ? length : 0] = '\0';
    char parent[16] = {};
    std::to_chars(parent, parent + sizeof parent - 1, getppid());
    const char* const words[] = {arguments[0], arguments[1], "--program", program,
                                 "--after",    parent,       nullptr};
    return execv(openProgram.c_str(), const_cast<char* const*>(words));
}

}  // namespace

int execPlatformProgram(const char* path, char* const arguments[]) {
    const bool isOpen = strcmp(path, kOpen) == 0 && arguments[0] != nullptr &&
                        arguments[1] != nullptr && arguments[2] == nullptr;
    if (isOpen && !openProgram.empty())
        return execOpen(arguments);
    return execv(path, arguments);
}

}  // namespace appkit
