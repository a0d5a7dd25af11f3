// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>
#include <vector>

namespace cf {

class RunLoop;

/// Keeps the run loops of a forked child apart from its parent's: the child inherits every
/// descriptor, and waking or waiting through those would reach into the parent. The loop of the
/// thread that forks works on in the child with its sources and timers; those of the other threads,
/// which the child does not have, are only cut off.
class ForkGuard {
public:
    static ForkGuard& instance();

    void enter(RunLoop& loop);
    void leave(RunLoop& loop);

private:
    ForkGuard();
    static void prepare();
    static void parent();
    static void child();
    void unlock();

    std::mutex _mutex;
    /// Guarded by _mutex.
    std::vector<RunLoop*> _loops;
    /// The loop of the forking thread, during a fork.
    RunLoop* _forking = nullptr;
};

}  // namespace cf
