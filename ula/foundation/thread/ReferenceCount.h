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

/// Drops a reference; true when it was the last one.
inline bool releaseReference(int volatile* count) {
    if (__libc_single_threaded) {
        *count = *count - 1;
        return *count == 0;
    }
    return atomicDecrementRelease(count) == 0;
}

}  // namespace tav::thread
