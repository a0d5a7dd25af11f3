// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>

namespace tav::thread {

class ConditionVariable;

/// A lock that one thread holds at a time; not recursive.
class Mutex {
public:
    void lock() { _mutex.lock(); }
    void unlock() { _mutex.unlock(); }

private:
    friend class ConditionVariable;
    std::mutex _mutex;
};

/// Holds a lock from construction to destruction.
template <class Lockable>
class ScopedLock {
public:
    explicit ScopedLock(Lockable& mutex) : _mutex(mutex) { _mutex.lock(); }
    ScopedLock(const ScopedLock&) = delete;
    ScopedLock& operator=(const ScopedLock&) = delete;
    ~ScopedLock() { _mutex.unlock(); }

    Lockable& mutex() const { return _mutex; }

private:
    Lockable& _mutex;
};

}  // namespace tav::thread
