// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

namespace security {

// As wait(2), but for the program that this thread has last had executed with privileges, if it has
// not been waited for: other children of the process may end at any time, the programs that GNUstep
// starts among them, and their end is not the end of that one.
__attribute__((visibility("default"))) pid_t waitForTool(int* status);

}  // namespace security
