// SPDX-License-Identifier: MIT
#pragma once

#include "ula/MainThreadCaller.h"
#include "ula/foundation/Exception.h"
#include "ula/foundation/util/ScopedPtr.h"

#include <cstddef>

namespace tav::ula {

class JobQueue;

/// One call. Held by the queue until it runs, by whoever runs it, by a synchronous caller, and
/// weakly by handles.
/// Thread: the queue's lock guards the flags and the place in the queue.
struct ExecutionJob {
    ExecutionJob(const util::Function0<void>& call, const util::SharedPtr<JobQueue>& owner)
        : function(call), queue(owner) {}

    /// The memory belongs to the `JobBlock` around it.
    static void operator delete(void*) {}

    util::Function0<void> function;
    bool begun = false;  ///< somebody runs it or has run it
    bool done = false;   ///< run or cancelled
    bool cancelled = false;
    int waiters = 0;
    /// Of a run in the queue's own course. Written before `done`, read after it.
    util::ScopedPtr<Exception> exception;

    /// The queue stays while there is a job that speaks of it.
    const util::SharedPtr<JobQueue> queue;

    /// The queue's reference; empty while the job is not queued.
    util::SharedPtr<ExecutionJob> queued;
    ExecutionJob* previous = nullptr;
    ExecutionJob* next = nullptr;
};

using Job = util::SharedPtr<ExecutionJob>;

}  // namespace tav::ula
