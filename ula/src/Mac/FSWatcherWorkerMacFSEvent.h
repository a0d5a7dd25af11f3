// SPDX-License-Identifier: MIT
#pragma once

#include "ula/FileSystemWatcher.h"
#include "ula/foundation/thread/Mutex.h"

#include <CoreServices/CoreServices.h>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace tav::ula {

class FSWatcherWorker;

/// Watches trees with one event stream over all of them, which is made anew whenever they change.
/// Thread: every call but the destructor with the registry's lock held. The stream calls back on
/// the run loop of the thread that made it, without that lock.
class FSWatcherWorkerMacFSEvent {
public:
    explicit FSWatcherWorkerMacFSEvent(FSWatcherWorker* worker);
    FSWatcherWorkerMacFSEvent(const FSWatcherWorkerMacFSEvent&) = delete;
    FSWatcherWorkerMacFSEvent& operator=(const FSWatcherWorkerMacFSEvent&) = delete;
    ~FSWatcherWorkerMacFSEvent();

    bool start(const std::string& path);
    void stop(const std::string& path);
    void setEnabled(bool enabled, const std::string& path);
    std::string getOSDebugString() const;

private:
    /// In the order of the bytes. The number tells a root from an earlier one of the same path.
    using Roots = std::map<std::string, std::uint64_t>;

    static void callBack(ConstFSEventStreamRef stream, void* info, size_t eventCount,
                         void* eventPaths, const FSEventStreamEventFlags* eventFlags,
                         const FSEventStreamEventId* eventIds);
    void handleEvent(const char* eventPath, FSEventStreamEventFlags flags);
    void handleChange(const std::string& path, bool isToBeChecked);
    void leaveRoot(const Roots& before, const std::string& path);

    bool add(const std::string& root);
    bool remove(const std::string& root);
    Roots roots() const;
    bool isDisabled(const std::string& root) const;

    void rebuildStream();
    void buildStream();
    void tearDownStream();
    void releasePaths();

    FSEventStreamRef _streamRef = nullptr;
    CFArrayRef _currentPaths = nullptr;
    Roots _roots;
    std::set<std::string> _disabled;
    FSWatcherWorker* _worker;

    /// Guards the roots and the disabled paths, for moments: the call-back reads them, too.
    mutable thread::Mutex _setsMutex;
    std::uint64_t _lastNumber = 0;
};

}  // namespace tav::ula
