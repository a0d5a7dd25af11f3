// SPDX-License-Identifier: MIT
#pragma once

#include <CoreFoundation/CFRunLoop.h>
#include <mutex>

namespace cf {

class RunLoop;

/// The run loops of the threads, and what becomes of them in a fork.
class ThreadRunLoop {
public:
    /// Made on first use. Fails: null while the thread's own objects are being destroyed at its
    /// end.
    static RunLoop* current();
    /// The calling thread's, or null when it has none yet.
    static RunLoop* ofThisThread();
    /// Made on first use, by whichever thread.
    static RunLoop& main();
    /// What guards the making of the main loop. Taken before any other lock.
    static std::mutex& mainLock();

    /// For the loops themselves, as they are made and destroyed.
    static void enter(RunLoop& loop);
    static void leave(RunLoop& loop);
};

}  // namespace cf
