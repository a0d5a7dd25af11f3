// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/thread/ConditionVariable.h"
#include "ula/foundation/thread/Mutex.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

namespace tav::ula {

class FileSystemWatcher;

/// One time that a watcher was registered: another one may have its address later.
struct Registration {
    FileSystemWatcher* watcher;
    std::uint64_t number;
};

/// Which watcher watches which path, and which of them are being called.
/// Thread: any. Its lock is held for moments only, and nothing else is locked or called meanwhile.
class WatcherRegistry {
public:
    /// A watcher that has an entry already keeps it.
    void add(FileSystemWatcher* watcher, const std::string& path);
    void remove(FileSystemWatcher* watcher);
    void remove(const std::vector<Registration>& registrations);

    /// By an entry that is not being told of its removal.
    bool isWatched(const std::string& path) const;
    bool hasEntryOf(const std::string& path) const;
    /// Empty when there is none.
    std::string pathOf(FileSystemWatcher* watcher) const;
    std::size_t size() const;

    /// The entries of a path, by address.
    std::vector<Registration> entriesOf(const std::string& path) const;
    /// The same. Whoever registers for the path from now on needs a new watch.
    std::vector<Registration> takeLeaveOf(const std::string& path);

    /// False when the registration is over: the watcher must not be touched.
    bool beginCall(const Registration& registration);
    void endCall(const Registration& registration);
    /// Returns when no other thread is in a call of the watcher.
    void waitForCalls(FileSystemWatcher* watcher);
    bool isCalledElsewhere(FileSystemWatcher* watcher) const;

private:
    using Lock = thread::ScopedLock<thread::Mutex>;

    struct Entry {
        std::string path;
        std::uint64_t number;
        bool isLeaving = false;
    };
    struct Call {
        FileSystemWatcher* watcher;
        std::thread::id thread;
    };

    void removeLocked(FileSystemWatcher* watcher);
    std::vector<Registration> entriesLocked(const std::string& path) const;
    bool isCalledElsewhereLocked(FileSystemWatcher* watcher) const;

    mutable thread::Mutex _mutex;
    std::map<FileSystemWatcher*, Entry> _entries;
    /// The same by path: with thousands of watchers the table is too long to look through.
    std::unordered_map<std::string, std::set<FileSystemWatcher*>> _byPath;
    std::uint64_t _lastNumber = 0;

    std::vector<Call> _calls;
    thread::ConditionVariable _callEnded;
};

}  // namespace tav::ula
