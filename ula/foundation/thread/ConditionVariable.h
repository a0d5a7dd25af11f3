// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/thread/Mutex.h"

#include <chrono>
#include <condition_variable>

namespace tav::thread {

/// Lets threads wait for a change of what a `Mutex` guards.
class ConditionVariable {
public:
    /// Releases the lock, waits, and takes it again. May return without a notification: callers
    /// check their condition in a loop.
    void wait(ScopedLock<Mutex>& lock) {
        std::unique_lock inner(lock.mutex()._mutex, std::adopt_lock);
        _condition.wait(inner);
        inner.release();
    }
    /// As `wait`, until `deadline` at the latest; false when it has passed.
    bool waitUntil(ScopedLock<Mutex>& lock, std::chrono::steady_clock::time_point deadline) {
        std::unique_lock inner(lock.mutex()._mutex, std::adopt_lock);
        const bool inTime = _condition.wait_until(inner, deadline) == std::cv_status::no_timeout;
        inner.release();
        return inTime;
    }

    void notify_one() noexcept { _condition.notify_one(); }
    void notify_all() noexcept { _condition.notify_all(); }

private:
    std::condition_variable _condition;
};

}  // namespace tav::thread
