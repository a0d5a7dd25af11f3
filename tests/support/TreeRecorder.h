// SPDX-License-Identifier: MIT
#pragma once

#include "ula/TreeMonitor.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tav::test {

/// A monitor on the calling thread's run loop, and what it has told.
class TreeRecorder {
public:
    explicit TreeRecorder(const std::string& path, ula::TreeMonitorOptions options = {});

    ula::TreeMonitor& monitor() { return *_monitor; }
    const std::vector<ula::TreeEvent>& told() const { return _told; }
    std::vector<ula::TreeEvent> take();
    /// Everything that has happened so far is told.
    void flush() { _monitor->flush(); }
    /// Runs the loop until the condition holds. Fails: false when it does not.
    bool waitUntil(const std::function<bool()>& condition);
    /// Until this was told.
    bool waitFor(const ula::TreeEvent& event);
    /// What was told, one line each: "created /a", "moved /a to /b".
    std::string text() const;
    /// Ends the monitor.
    void end() { _monitor.reset(); }
    /// Called for each event.
    std::function<void()> onEvent;

private:
    std::unique_ptr<ula::TreeMonitor> _monitor;
    std::vector<ula::TreeEvent> _told;
};

}  // namespace tav::test
