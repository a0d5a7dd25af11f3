// SPDX-License-Identifier: MIT
#pragma once

#include <ula/CallOwner.h>
#include <ula/MainThreadCaller.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

/// Work on a thread of its own that reports to the window that started it. Knows no toolkit.
/// Thread: the main thread; both functions are called there too.
class Worker {
public:
    using Progress = std::function<void(int percent)>;
    using Finished = std::function<void(bool isComplete)>;

    Worker(Progress progress, Finished finished)
        : _progress(std::move(progress)),
          _finished(std::move(finished)),
          _thread([this] { work(); }) {}
    ~Worker() {
        cancel();
        _thread.join();
    }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /// `finished` is still called.
    void cancel() { _isCancelled = true; }

private:
    void work() {
        auto* const mainThread = tav::ula::MainThreadCaller::instance();
        for (int percent = 1; percent <= 100 && !_isCancelled; ++percent) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            mainThread->callAsyncOwned(_owner, [this, percent] { _progress(percent); });
        }
        mainThread->callAsyncOwned(_owner, [this] { _finished(!_isCancelled); });
    }

    const Progress _progress;
    const Finished _finished;
    std::atomic<bool> _isCancelled = false;
    /// No call arrives any more once the worker has gone.
    tav::ula::CallOwner _owner;
    /// Last, as it uses everything above.
    std::thread _thread;
};
