// SPDX-License-Identifier: MIT
#include "sys/fcntl.h"

int open(const char* path, EventOnlyFlag) {
    return open(path, O_PATH | O_CLOEXEC);
}
