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

    /// Guards the queue and the flags of every job.
    thread::Mutex& mutex() { return _mutex; }
    /// The two that follow: with the lock held.
    void append(Job job);
    void waitUntilDone(ExecutionJob& job, thread::ScopedLock<thread::Mutex>& lock);

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
    /// Claims the first job; an empty one when nothing is left or the caller is going.
    Job takeFirst();
    static void run(ExecutionJob& job);
    void runHere(ExecutionJob& job);
    void finish(ExecutionJob& job);
    std::vector<Job> takeAllCancelled();
    /// The queue's reference; empty when the job was not queued any more.
    Job takeCancelled(ExecutionJob& job, bool& isAwaited);
    static void markCancelled(ExecutionJob& job);

    const util::SharedPtr<MainThreadCaller::State> _state;
    thread::Mutex _mutex;
    /// Of any job; each waiter looks at its own.
    std::unique_ptr<thread::ConditionVariable> _jobDone =
        std::make_unique<thread::ConditionVariable>();
    JobList _executionJobs;
    /// The list's size, to be read without the lock.
    std::atomic<std::size_t> _size = 0;
    bool _isForkedByMainThread = false;
};

}  // namespace tav::ula
