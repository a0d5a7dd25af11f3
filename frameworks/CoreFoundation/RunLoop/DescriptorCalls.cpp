// SPDX-License-Identifier: MIT
#include "DescriptorCalls.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace cf {

int checked(int descriptor, const char* call) {
    if (descriptor < 0)
        fprintf(stderr, "CFRunLoop: %s: %s\n", call, strerror(errno));
    return descriptor;
}

void closeDescriptor(int descriptor) noexcept {
    if (descriptor >= 0)
        close(descriptor);
}

void replaceDescriptor(int descriptor, int replacement) noexcept {
    if (descriptor >= 0 && replacement >= 0)
        dup3(replacement, descriptor, O_CLOEXEC);
    closeDescriptor(replacement);
}

}  // namespace cf
