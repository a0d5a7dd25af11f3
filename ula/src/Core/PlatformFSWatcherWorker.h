// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace tav::ula {

class FSWatcherWorker;

/// The worker of the platform.
std::shared_ptr<FSWatcherWorker> createPlatformFSWatcherWorker();

}  // namespace tav::ula
