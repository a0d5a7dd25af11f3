// SPDX-License-Identifier: MIT
#include "ula/src/Core/JobQueue.h"

#include "ula/foundation/debug/Assertion.h"
#include "ula/foundation/thread/Thread.h"
#include "ula/src/Core/ExceptionCopy.h"

namespace tav::ula {

namespace {

using Lock = thread::ScopedLock<thread::Mutex>;

/// More than any application has reason to keep waiting.
constexpr std::size_t kCrowd = 10000;

}  // namespace

bool JobQueue::isMainThread() const {
    return thread::getThreadId() == _state->mainThreadId;
}

void JobQueue::reportCrowd(int line) const {
    // Outside the lock: a log sink may make calls of its own.
    if (_size.load(std::memory_order_relaxed) >= kCrowd)
        debug::assertionFailed("src/Core/MainThreadCaller", line, "_executionJobs.size() < 10000");
}

void JobQueue::append(Job job) {
    _executionJobs.append(std::move(job));
    _size.store(_executionJobs.size(), std::memory_order_relaxed);
}

void JobQueue::waitUntilDone(ExecutionJob& job, Lock& lock) {
    ++job.waiters;
    while (!job.done)
        _jobDone->wait(lock);
    --job.waiters;
}

void JobQueue::drain() {
    for (std::size_t left = _size.load(); left > 0; --left) {
        const Job job = takeFirst();
        if (!job)
            return;
        run(*job);
        finish(*job);
    }
}

Job JobQueue::takeFirst() {
    const Lock lock(_mutex);
    if (!_state->running)
        return Job();
    Job job = _executionJobs.takeFront();
    _size.store(_executionJobs.size(), std::memory_order_relaxed);
    if (job)
        job->begun = true;
    return job;
}

void JobQueue::run(ExecutionJob& job) {
    try {
        if (job.function)
            job.function();
    } catch (...) {
        job.exception.reset(copyOfCurrentException());
    }
}

void JobQueue::finish(ExecutionJob& job) {
    bool isAwaited = false;
    {
        const Lock lock(_mutex);
        job.done = true;
        isAwaited = job.waiters > 0;
    }
    // All waiters share one condition variable: it is left alone where nobody waits for this job.
    if (isAwaited)
        _jobDone->notify_all();
}

void JobQueue::markCancelled(ExecutionJob& job) {
    job.cancelled = true;
    job.done = true;
}

std::vector<Job> JobQueue::takeAllCancelled() {
    std::vector<Job> jobs;
    const Lock lock(_mutex);
    jobs.reserve(_executionJobs.size());
    while (Job job = _executionJobs.takeFront()) {
        markCancelled(*job);
        jobs.push_back(std::move(job));
    }
    _size.store(0, std::memory_order_relaxed);
    return jobs;
}

void JobQueue::cancelAll() {
    // Without the lock: what the functions hold may make calls as it goes.
    takeAllCancelled();
    _jobDone->notify_all();
}

Job JobQueue::takeCancelled(ExecutionJob& job, bool& isAwaited) {
    const Lock lock(_mutex);
    markCancelled(job);
    isAwaited = job.waiters > 0;
    Job queued = _executionJobs.remove(job);
    _size.store(_executionJobs.size(), std::memory_order_relaxed);
    return queued;
}

void JobQueue::cancel(ExecutionJob& job) {
    bool isAwaited = false;
    takeCancelled(job, isAwaited);
    if (isAwaited)
        _jobDone->notify_all();
}

void JobQueue::wait(ExecutionJob& job) {
    if (isMainThread())
        return runHere(job);
    Lock lock(_mutex);
    waitUntilDone(job, lock);
}

void JobQueue::runHere(ExecutionJob& job) {
    Job removed;
    {
        const Lock lock(_mutex);
        // Begun and not done: it is further up on this very stack.
        if (job.done || job.begun)
            return;
        job.begun = true;
        removed = _executionJobs.remove(job);
        _size.store(_executionJobs.size(), std::memory_order_relaxed);
    }
    // Also when the function throws: the job does not run a second time.
    struct Finish {
        ~Finish() { queue.finish(job); }
        JobQueue& queue;
        ExecutionJob& job;
    } const finish{*this, job};
    if (job.function)
        job.function();
}

void JobQueue::beforeFork() {
    _mutex.lock();
    _isForkedByMainThread = isMainThread();
}

void JobQueue::afterForkInParent() {
    _mutex.unlock();
}

void JobQueue::afterForkInChild() {
    // The threads that wait do not exist here, and the condition variable would wait for them.
    static_cast<void>(_jobDone.release());
    _jobDone = std::make_unique<thread::ConditionVariable>();
    if (_isForkedByMainThread)
        _state->mainThreadId = thread::getThreadId();
    // Not destroyed: what the functions hold may need a lock that nobody here will give back.
    _executionJobs.abandon(markCancelled);
    _size = 0;
    _mutex.unlock();
}

}  // namespace tav::ula
