// SPDX-License-Identifier: MIT
#pragma once

#include "ula/MainThreadCaller.h"

#include <semaphore>

namespace tav::ula {

/// A caller whose main thread is the constructing one and whose queue is run by the test. The real
/// one has a run loop in between.
class TestCaller : public JobBasedMainThreadCaller {
public:
    /// Counts the calls; each comes with the lock held, after the job was queued.
    void wakeUpMainThread() override { wakeUps.release(); }

    using JobBasedMainThreadCaller::runPendingJobs;

    std::counting_semaphore<> wakeUps{0};
};

}  // namespace tav::ula
