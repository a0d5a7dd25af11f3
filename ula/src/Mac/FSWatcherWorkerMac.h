// SPDX-License-Identifier: MIT
#pragma once

#include "ula/src/Core/FSWatcherWorker.h"
#include "ula/src/Mac/FSWatcherWorkerMacFSEvent.h"
#include "ula/src/Mac/FSWatcherWorkerMacKQueue.h"

namespace tav::ula {

/// Watches items with a kernel queue and trees with an event stream.
class FSWatcherWorkerMac : public FSWatcherWorker {
public:
    FSWatcherWorkerMac();
    ~FSWatcherWorkerMac() override;

    bool startWatching(const std::string& path, bool recursive) override;
    void stopWatching(const std::string& path) override;
    void poll() override;
    void setEnabled(bool enabled, const std::string& path) override;
    std::string getOSDebugString() override;
    std::string normalizePath(const std::string& path) override;

private:
    util::ScopedPtr<FSWatcherWorkerMacKQueue> _kqueue;
    util::ScopedPtr<FSWatcherWorkerMacFSEvent> _fsEvent;
};

}  // namespace tav::ula
