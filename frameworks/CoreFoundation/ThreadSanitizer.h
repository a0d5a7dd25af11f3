// SPDX-License-Identifier: MIT
// GNUstep counts the references to objects with atomic operations that the thread sanitizer does
// not see: what a thread did before it let go of an object would seem to race with the end of the
// object in another thread.
#pragma once

#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define CF_SEES_THREADS 1
#endif
#endif

#ifdef CF_SEES_THREADS
extern "C" void __tsan_acquire(void* address);
extern "C" void __tsan_release(void* address);
#endif

namespace cf {

inline void letsGoOf([[maybe_unused]] const void* object) {
#ifdef CF_SEES_THREADS
    __tsan_release(const_cast<void*>(object));
#endif
}

inline void ends([[maybe_unused]] const void* object) {
#ifdef CF_SEES_THREADS
    __tsan_acquire(const_cast<void*>(object));
#endif
}

}  // namespace cf
