// SPDX-License-Identifier: MIT
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <ula/CallOwner.h>
#include <ula/MainThreadCaller.h>
#include <vector>

namespace lighttable {

/// A thread for what waits for disks, cameras and keyrings. It has a run loop, so that objects
/// which need one can live on it.
/// Thread: made and destroyed on the main one; `add` from any.
class WorkThread {
public:
    using Job = std::function<void()>;

    WorkThread();
    /// Waits until all jobs that were added have run.
    ~WorkThread();
    WorkThread(const WorkThread&) = delete;
    WorkThread& operator=(const WorkThread&) = delete;

    /// Runs the job after those that were added before.
    void add(Job job);
    /// Runs `work` here and then, unless this object has gone, `done` with its result on the main
    /// thread.
    template <class Work, class Done>
    void run(Work work, Done done);
    /// Runs the function on the main thread, unless this object has gone.
    void tell(std::function<void()> function);

private:
    void work();
    void serve();
    void wake();

    std::mutex _mutex;
    std::vector<Job> _jobs;
    bool _isEnding = false;
    CFRunLoopRef _runLoop = nullptr;
    CFRunLoopSourceRef _source = nullptr;
    tav::ula::CallOwner _owner;
    /// Last, as it uses everything above.
    std::thread _thread;
};

template <class Work, class Done>
void WorkThread::run(Work work, Done done) {
    add([this, work = std::move(work), done = std::move(done)] {
        auto result = std::make_shared<decltype(work())>(work());
        tell([done, result] { done(*result); });
    });
}

}  // namespace lighttable
