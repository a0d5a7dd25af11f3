// SPDX-License-Identifier: MIT
// A library that is written for the platform waits for any child where it wants a certain one.
#include "Security/Authorization/WaitForTool.h"

#include <sys/wait.h>

/// Hidden: only the library that this is linked into has it in the C library's place.
extern "C" __attribute__((visibility("hidden"))) pid_t wait(int* status) {
    return security::waitForTool(status);
}
