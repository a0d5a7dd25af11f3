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
    // Outside the locks: a log sink may make calls of its own.
    const std::size_t atMost =
        _incomingSize.load(std::memory_order_relaxed) + _takenSize.load(std::memory_order_relaxed);
    if (atMost >= kCrowd && countPending() >= kCrowd)
        debug::assertionFailed("src/Core/MainThreadCaller", line, "_executionJobs.size() < 10000");
}

std::size_t JobQueue::countPending() const {
    const Lock lock(_mutex);
    const Lock incomingLock(_incomingMutex);
    _takenSize.store(_executionJobs.size(), std::memory_order_relaxed);
    return _executionJobs.size() + _incoming.size();
}

void JobQueue::takeIncoming() {
    const Lock lock(_incomingMutex);
    _executionJobs.appendAll(_incoming);
    _incomingSize.store(0, std::memory_order_relaxed);
    _takenSize.store(_executionJobs.size(), std::memory_order_relaxed);
}

void JobQueue::waitUntilDone(ExecutionJob& job) {
    Lock lock(_mutex);
    ++job.waiters;
    while (!job.done)
        _jobDone->wait(lock);
    --job.waiters;
}

std::size_t JobQueue::takePending() {
    const Lock lock(_mutex);
    takeIncoming();
    return _executionJobs.size();
}

void JobQueue::drain() {
    Job job;
    for (std::size_t left = takePending(); left > 0; --left) {
        job = finishAndTakeNext(job.get());
        if (!job)
            return;
        run(*job);
    }
    if (job)
        finish(*job);
}

/// Both at once, as the lock is most of what they cost.
Job JobQueue::finishAndTakeNext(ExecutionJob* finished) {
    Job next;
    bool isAwaited = false;
    {
        const Lock lock(_mutex);
        if (finished)
            isAwaited = markDone(*finished);
        if (_state->running)
            next = _executionJobs.takeFront();
        if (next)
            next->begun = true;
    }
    if (isAwaited)
        _jobDone->notify_all();
    return next;
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
        isAwaited = markDone(job);
    }
    if (isAwaited)
        _jobDone->notify_all();
}

/// All waiters share one condition variable: it is left alone where nobody waits for this job.
bool JobQueue::markDone(ExecutionJob& job) {
    job.done = true;
    return job.waiters > 0;
}

void JobQueue::markCancelled(ExecutionJob& job) {
    job.cancelled = true;
    job.done = true;
}

std::vector<Job> JobQueue::takeAllCancelled() {
    std::vector<Job> jobs;
    const Lock lock(_mutex);
    takeIncoming();
    jobs.reserve(_executionJobs.size());
    while (Job job = _executionJobs.takeFront()) {
        markCancelled(*job);
        jobs.push_back(std::move(job));
    }
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
    return remove(job);
}

Job JobQueue::remove(ExecutionJob& job) {
    takeIncoming();
    return _executionJobs.remove(job);
}

void JobQueue::cancel(ExecutionJob& job) {
    bool isAwaited = false;
    takeCancelled(job, isAwaited);
    if (isAwaited)
        _jobDone->notify_all();
}

void JobQueue::wait(ExecutionJob& job) {
    if (isMainThread())
        runHere(job);
    else
        waitUntilDone(job);
}

void JobQueue::runHere(ExecutionJob& job) {
    Job removed;
    {
        const Lock lock(_mutex);
        // Begun and not done: it is further up on this very stack.
        if (job.done || job.begun)
            return;
        job.begun = true;
        removed = remove(job);
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
    _incomingMutex.lock();
    _isForkedByMainThread = isMainThread();
}

void JobQueue::afterForkInParent() {
    _incomingMutex.unlock();
    _mutex.unlock();
}

void JobQueue::afterForkInChild() {
    // The threads that wait do not exist here, and the condition variable would wait for them.
    static_cast<void>(_jobDone.release());
    _jobDone = std::make_unique<thread::ConditionVariable>();
    if (_isForkedByMainThread)
        _state->mainThreadId = thread::getThreadId();
    _incomingMutex.unlock();
    takeIncoming();
    // Not destroyed: what the functions hold may need a lock that nobody here will give back.
    _executionJobs.abandon(markCancelled);
    _mutex.unlock();
}

}  // namespace tav::ula
