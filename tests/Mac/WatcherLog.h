// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Patience.h"
#include "ula/FileSystemWatcher.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace tav::test {

/// What watchers tell, on whatever thread.
class WatcherLog {
public:
    void listenTo(ula::FileSystemWatcher& watcher) {
        watcher.connect([this](const std::string& path, ula::FileSystemWatcherInfo info) {
            add(path + (info == ula::PathRemoved ? " removed" : " changed"));
        });
    }
    void add(const std::string& line) {
        const std::lock_guard lock(_mutex);
        _lines.push_back(line);
        _added.notify_all();
    }
    /// Waits until there are so many lines, and takes them all.
    std::vector<std::string> take(std::size_t count = 1) {
        std::unique_lock lock(_mutex);
        _added.wait_for(lock, kPatience, [&] { return _lines.size() >= count; });
        return std::exchange(_lines, {});
    }

private:
    std::mutex _mutex;
    std::condition_variable _added;
    std::vector<std::string> _lines;
};

}  // namespace tav::test
