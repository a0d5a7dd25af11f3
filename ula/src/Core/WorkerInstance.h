// SPDX-License-Identifier: MIT
#pragma once

#include "ula/src/Core/FSWatcherWorker.h"

#include <memory>

namespace tav::ula::WorkerInstance {

/// The process's worker, or null.
/// Thread: any.
std::shared_ptr<FSWatcherWorker> get();

/// The time in which a watcher registers. The worker is made if need be, and stays until the end
/// of it, although it may have no watcher yet.
/// Fails: throws what stands in the way of a worker.
class RegistrationTime {
public:
    RegistrationTime();
    RegistrationTime(const RegistrationTime&) = delete;
    RegistrationTime& operator=(const RegistrationTime&) = delete;
    ~RegistrationTime();

    FSWatcherWorker& worker() const { return *_worker; }

private:
    std::shared_ptr<FSWatcherWorker> _worker;
};

/// Ends the worker when nobody watches or registers. It is destroyed here, unless somebody is still
/// in a call of it, who destroys it later then.
/// Thread: any.
void releaseUnused();

}  // namespace tav::ula::WorkerInstance
