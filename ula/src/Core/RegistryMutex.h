// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <mutex>
#include <thread>

namespace tav::ula {

/// A lock that its holder may take again, and may give up for the time of a wait, however often it
/// was taken.
class RegistryMutex {
public:
    void lock() {
        _mutex.lock();
        if (++_depth == 1)
            _owner = std::this_thread::get_id();
    }
    void unlock() {
        if (--_depth == 0)
            _owner = std::thread::id();
        _mutex.unlock();
    }

    /// How often the calling thread had it.
    int giveUp() {
        if (_owner != std::this_thread::get_id())
            return 0;
        const int depth = _depth;
        for (int left = depth; left > 0; --left)
            unlock();
        return depth;
    }
    void takeBack(int depth) {
        for (int left = depth; left > 0; --left)
            lock();
    }

private:
    std::recursive_mutex _mutex;
    /// Guarded by the mutex.
    int _depth = 0;
    std::atomic<std::thread::id> _owner;
};

}  // namespace tav::ula
