// SPDX-License-Identifier: MIT
#pragma once

namespace appkit {

// As execv(2), with the platform's programs where these frameworks have their own: for now
// "/usr/bin/open" with one path. Safe between fork and exec.
__attribute__((visibility("default"))) int execPlatformProgram(const char* path,
                                                               char* const arguments[]);

}  // namespace appkit
