// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace tav::ula {

class FSWatcherWorker;

/// Watches items alone, each through a descriptor of its own in one kernel queue.
/// Thread: every call but the destructor with the registry's lock held.
class FSWatcherWorkerMacKQueue {
public:
    explicit FSWatcherWorkerMacKQueue(FSWatcherWorker* worker);
    FSWatcherWorkerMacKQueue(const FSWatcherWorkerMacKQueue&) = delete;
    FSWatcherWorkerMacKQueue& operator=(const FSWatcherWorkerMacKQueue&) = delete;
    ~FSWatcherWorkerMacKQueue();

    /// Fails: false, for what cannot be opened with an assertion in the log.
    bool start(const std::string& path);
    void stop(const std::string& path);
    /// Takes one event at most.
    void poll();
    void setEnabled(bool enabled, const std::string& path);
    std::string getOSDebugString() const;

private:
    struct Item {
        std::int32_t descriptor;
        std::uint32_t events;
        /// Tells it from a later item of the same path, which may have the same descriptor, too.
        std::uint64_t number;
    };

    int change(const Item& item, std::uint16_t flags) const;
    bool isStill(const std::string& path, std::uint64_t number) const;

    std::int32_t _kqueue;
    std::map<std::string, Item> _items;
    FSWatcherWorker* _worker;
    std::uint64_t _lastNumber = 0;
};

}  // namespace tav::ula
