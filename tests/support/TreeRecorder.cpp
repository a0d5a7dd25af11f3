// SPDX-License-Identifier: MIT
#include "tests/support/TreeRecorder.h"

#include "tests/support/Patience.h"

#include <CoreFoundation/CoreFoundation.h>
#include <algorithm>
#include <stdexcept>
#include <utility>

namespace tav::test {

using ula::TreeEvent;
using ula::TreeEventType;

TreeRecorder::TreeRecorder(const std::string& path, ula::TreeMonitorOptions options) {
    std::string error;
    _monitor = ula::TreeMonitor::create(path, options, &error);
    if (!_monitor)
        throw std::runtime_error(error);
    _monitor->changed().connect([this](const TreeEvent& event) {
        _told.push_back(event);
        if (onEvent)
            onEvent();
    });
}

std::vector<TreeEvent> TreeRecorder::take() {
    return std::exchange(_told, {});
}

bool TreeRecorder::waitUntil(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!condition()) {
        const std::chrono::duration<double> left = end - std::chrono::steady_clock::now();
        if (left.count() <= 0)
            return false;
        // Timers are no sources: the wait ends now and then to look at what they did.
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, std::min(left.count(), 0.02), true);
    }
    return true;
}

bool TreeRecorder::waitFor(const TreeEvent& event) {
    return waitUntil([&] { return std::find(_told.begin(), _told.end(), event) != _told.end(); });
}

std::string TreeRecorder::text() const {
    static constexpr const char* kNames[] = {"created ", "changed ", "removed ", "moved ",
                                             "rescan "};
    std::string text;
    for (const TreeEvent& event : _told) {
        text += kNames[static_cast<std::size_t>(event.type)] + event.path;
        text += event.type == TreeEventType::Moved ? " to " + event.newPath + "\n" : "\n";
    }
    return text;
}

}  // namespace tav::test
