// SPDX-License-Identifier: MIT
// A library that is written for the platform runs the platform's programs by their fixed paths,
// where a Linux has others or none.
#include "AppKit/ExecPlatformProgram.h"

#include <unistd.h>

/// Hidden: only the library that this is linked into has it in the C library's place.
extern "C" __attribute__((visibility("hidden"))) int execv(const char* path,
                                                           char* const arguments[]) noexcept {
    return appkit::execPlatformProgram(path, arguments);
}
