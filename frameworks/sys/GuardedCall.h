// SPDX-License-Identifier: MIT
#pragma once

#include "CoreFoundation/Guarded.h"

#include <cerrno>

namespace kernelqueue {

// A call that answers as the system's do: -1 and errno, here for want of memory, where its work
// throws.
template <class Work>
int guardedCall(Work work) {
    constexpr int kThrown = -2;
    const int result = cf::guarded(kThrown, kThrown, work);
    if (result != kThrown)
        return result;
    errno = ENOMEM;
    return -1;
}

}  // namespace kernelqueue
