// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/thread/ConditionVariable.h"
#include "ula/src/Core/JobList.h"

#include <atomic>
#include <memory>
#include <vector>

namespace tav::ula {

/// The jobs of one caller and the lock around them. Apart from the caller, because blocked threads,
/// handles and a drain that destroys the caller still need it when the caller is gone.
/// Thread: any.
class JobQueue {
public:
    explicit JobQueue(util::SharedPtr<MainThreadCaller::State> state) : _state(std::move(state)) {}
    JobQueue(const JobQueue&) = delete;
    JobQueue& operator=(const JobQueue&) = delete;

    bool isMainThread() const;
    /// Logs the assertion when so many jobs are pending that something must be wrong.
    void reportCrowd(int line) const;

    /// Calls `wakeUp` with the lock of those that queue held.
    template <class WakeUp>
    void append(Job job, WakeUp&& wakeUp) {
        const thread::ScopedLock lock(_incomingMutex);
        _incoming.append(std::move(job));
        _incomingSize.store(_incoming.size(), std::memory_order_relaxed);
        wakeUp();
    }
    void waitUntilDone(ExecutionJob& job);

    /// Runs the jobs that are pending now, on the calling thread.
    void drain();
    void cancelAll();

    /// What handles do. `cancel` and `wait` of a job that is done do nothing.
    void cancel(ExecutionJob& job);
    void wait(ExecutionJob& job);

    /// Around fork(2): the child gets an empty queue, as the jobs are the parent's to run.
    void beforeFork();
    void afterForkInParent();
    void afterForkInChild();

private:
    std::size_t countPending() const;
    /// How many a drain that begins now is to run.
    std::size_t takePending();
    /// Claims the first job; gives an empty one when nothing is left or the caller is going.
    Job finishAndTakeNext(ExecutionJob* finished);
    static void run(ExecutionJob& job);
    void runHere(ExecutionJob& job);
    void finish(ExecutionJob& job);
    /// Whether somebody waits for it. With the lock held.
    static bool markDone(ExecutionJob& job);
    std::vector<Job> takeAllCancelled();
    /// The queue's reference; empty when the job was not queued any more.
    Job takeCancelled(ExecutionJob& job, bool& isAwaited);
    static void markCancelled(ExecutionJob& job);

    /// Out of the queue, wherever it is. With `_mutex` held.
    Job remove(ExecutionJob& job);
    /// Has everything in `_executionJobs`. With `_mutex` held.
    void takeIncoming();

    const util::SharedPtr<MainThreadCaller::State> _state;

    /// Those that queue have a lock of their own, so that they and the main thread seldom meet.
    /// Taken after `_mutex` where both are needed.
    mutable thread::Mutex _incomingMutex;
    JobList _incoming;
    /// To be read without a lock: the list's size, and at least as many as `_executionJobs` has.
    std::atomic<std::size_t> _incomingSize = 0;
    mutable std::atomic<std::size_t> _takenSize = 0;

    /// Guards what follows, and the flags of every job.
    mutable thread::Mutex _mutex;
    /// Of any job; each waiter looks at its own.
    std::unique_ptr<thread::ConditionVariable> _jobDone =
        std::make_unique<thread::ConditionVariable>();
    JobList _executionJobs;
    bool _isForkedByMainThread = false;
};

}  // namespace tav::ula
