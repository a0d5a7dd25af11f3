// SPDX-License-Identifier: MIT
#include "ula/foundation/debug/Assertion.h"
#include "ula/src/Core/ExceptionCopy.h"
#include "ula/src/Core/ForkedCallers.h"
#include "ula/src/Core/JobBlock.h"

namespace tav::ula {

JobBasedMainThreadCaller::JobBasedMainThreadCaller() : _queue(new JobQueue(state())) {
    ForkedCallers::add(_queue);
}

JobBasedMainThreadCaller::~JobBasedMainThreadCaller() {
    ForkedCallers::remove(_queue);
    // Also notifies: a call that came in too late must not leave its thread waiting for ever.
    _queue->cancelAll();
}

util::SharedPtr<CallHandle>
JobBasedMainThreadCaller::callAsync(const util::Function0<void>& function) {
    _queue->reportCrowd(98);
    auto [job, handle] = JobBlock::makeJobAndHandle(function, _queue);
    _queue->append(std::move(job), [this] { wakeUpMainThread(); });
    return handle;
}

void JobBasedMainThreadCaller::callSync(const util::Function0<void>& function) {
    if (isMainThread()) {
        if (function)
            function();
        return;
    }
    const util::SharedPtr<JobQueue> queue = _queue;
    queue->reportCrowd(125);
    const Job job = JobBlock::makeJob(function, queue);
    queue->append(job, [this] { wakeUpMainThread(); });
    queue->waitUntilDone(*job);
    raise(job->exception);
}

void JobBasedMainThreadCaller::processJobs() {
    if (isMainThread())
        runPendingJobs();
    else
        debug::assertionFailed("MainThreadCaller", 82, "isMainThread()");
}

void JobBasedMainThreadCaller::runPendingJobs() {
    if (!isMainThread())
        debug::assertionFailed("src/Core/MainThreadCaller", 142, "isMainThread()");
    // Kept here, as a job may destroy this object.
    const util::SharedPtr<JobQueue> queue = _queue;
    queue->drain();
}

void JobBasedMainThreadCaller::cancelAllJobs() {
    _queue->cancelAll();
}

}  // namespace tav::ula
