// SPDX-License-Identifier: MIT
#pragma once

#include "ula/src/Core/JobHandle.h"
#include "ula/src/Core/JobMemory.h"

#include <atomic>
#include <memory>
#include <new>

namespace tav::ula {

/// A job, its handle and the counts of both in one allocation, as an application makes hundreds of
/// thousands of them. It goes with the last reference, strong or weak, to either.
class JobBlock {
public:
    struct JobAndHandle {
        Job job;
        util::SharedPtr<CallHandle> handle;
    };

    static Job makeJob(const util::Function0<void>& function,
                       const util::SharedPtr<JobQueue>& queue) {
        // Copying the function may throw.
        std::unique_ptr<JobBlock> block(new JobBlock(1));
        Job job = block->job(function, queue);
        static_cast<void>(block.release());
        return job;
    }
    static JobAndHandle makeJobAndHandle(const util::Function0<void>& function,
                                         const util::SharedPtr<JobQueue>& queue) {
        std::unique_ptr<JobBlock> block(new JobBlock(2));
        Job job = block->job(function, queue);
        util::SharedPtr<CallHandle> handle = block.release()->handle(job);
        return {std::move(job), std::move(handle)};
    }

    static void* operator new(std::size_t) {
        static_assert(sizeof(JobBlock) <= JobMemory::kSize);
        return JobMemory::take();
    }
    static void operator delete(void* block) { JobMemory::give(block); }

private:
    struct Count : util::EmbeddedCountBlock {
        explicit Count(JobBlock* owner)
            : util::EmbeddedCountBlock([](util::EmbeddedCountBlock* count) {
                  static_cast<Count*>(count)->block->release();
              }),
              block(owner) {}
        JobBlock* const block;
    };

    explicit JobBlock(int counts) : _counts(counts) {}

    Job job(const util::Function0<void>& function, const util::SharedPtr<JobQueue>& queue) {
        return Job(new (_jobMemory) ExecutionJob(function, queue), new (_jobCount) Count(this));
    }
    util::SharedPtr<CallHandle> handle(const Job& job) {
        return util::SharedPtr<CallHandle>(new (_handleMemory) JobHandle(job),
                                           new (_handleCount) Count(this));
    }
    void release() {
        if (_counts.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete this;
    }

    alignas(ExecutionJob) std::byte _jobMemory[sizeof(ExecutionJob)];
    alignas(JobHandle) std::byte _handleMemory[sizeof(JobHandle)];
    alignas(Count) std::byte _jobCount[sizeof(Count)];
    alignas(Count) std::byte _handleCount[sizeof(Count)];
    std::atomic<int> _counts;
};

}  // namespace tav::ula
