// SPDX-License-Identifier: MIT
#pragma once

#include "ula/src/Core/JobQueue.h"

namespace tav::ula {

/// The handle of a job. Once the job is gone, its caller may be, too, and everything is a no-op.
class JobHandle : public CallHandle {
public:
    explicit JobHandle(const Job& job) : _job(job) {}

    /// The memory belongs to the `JobBlock` around it.
    static void operator delete(void*) {}

    bool isFinished() const override { return _job.expired(); }
    void wait() override {
        if (const Job job = _job.lock())
            job->queue->wait(*job);
    }
    void cancel() override {
        if (const Job job = _job.lock())
            job->queue->cancel(*job);
    }

private:
    const util::WeakPtr<ExecutionJob> _job;
};

}  // namespace tav::ula
