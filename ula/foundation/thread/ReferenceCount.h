// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/thread/Atomic.h"

#include <sys/single_threaded.h>

namespace tav::thread {

/// Adds a reference. While the process has a single thread, as the C library tells, the locked
/// instruction is left out: it would be most of the cost of copying a string.
inline void retainReference(int volatile* count) {
    if (__libc_single_threaded)
        *count = *count + 1;
    else
        atomicIncrementAcquire(count);
}

/// Drops a reference and returns how many are left.
inline int dropReference(int volatile* count) {
    if (!__libc_single_threaded)
        return atomicDecrementRelease(count);
    *count = *count - 1;
    return *count;
}

/// Drops a reference; true when it was the last one.
inline bool releaseReference(int volatile* count) {
    return dropReference(count) == 0;
}

}  // namespace tav::thread
