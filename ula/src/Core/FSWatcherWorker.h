// SPDX-License-Identifier: MIT
#pragma once

#include "ula/FileSystemWatcher.h"
#include "ula/foundation/thread/ConditionVariable.h"
#include "ula/foundation/thread/Mutex.h"
#include "ula/foundation/thread/Thread.h"
#include "ula/foundation/util/ScopedPtr.h"
#include "ula/src/Core/RegistryMutex.h"
#include "ula/src/Core/WatcherRegistry.h"

#include <atomic>
#include <memory>
#include <string>

namespace tav::ula {

/// What all watchers of the process share: the table of who watches which path, and the thread that
/// polls the platform while there is an entry in it.
///
/// It is held by counted pointers. Whoever is in a call of the worker holds one; so does its thread
/// during a round, and only then. So the last one to leave destroys it, and when that is the thread
/// itself, the thread is left to end alone.
class FSWatcherWorker : public std::enable_shared_from_this<FSWatcherWorker> {
public:
    FSWatcherWorker(const FSWatcherWorker&) = delete;
    FSWatcherWorker& operator=(const FSWatcherWorker&) = delete;
    virtual ~FSWatcherWorker();

    // The platform's part, called with the registry's lock held.
    virtual bool startWatching(const std::string& path, bool recursive) = 0;
    virtual void stopWatching(const std::string& path) = 0;
    /// Collects what has happened, without waiting. Thread: the worker's.
    virtual void poll() = 0;
    virtual void setEnabled(bool enabled, const std::string& path) = 0;
    virtual std::string getOSDebugString();
    /// After each round and, without the lock, at the end of the thread. Thread: the worker's.
    virtual void afterPoll();
    virtual std::string normalizePath(const std::string& path);

    void registerWatcher(FileSystemWatcher* watcher, const std::string& path, bool recursive);
    /// When it has returned, no other thread is in a slot of the watcher, and none will be.
    void unregisterWatcher(FileSystemWatcher* watcher);
    void setWatcherEnabled(FileSystemWatcher* watcher, bool enabled);
    std::string debugString();
    bool hasWatchers() const { return _registry.size() != 0; }

    /// Calls the watchers of a path, in the order of their addresses, with the path that changed
    /// or, when that is empty, with their own. Thread: any that holds a counted pointer; the slots
    /// are called in it.
    void notify(const std::string& watchedPath, const std::string& actualPath,
                FileSystemWatcherInfo info);

    /// In a forked child, which has neither the thread nor what it waits for: nothing is called or
    /// locked any more.
    void abandon();

protected:
    /// Starts the thread, which calls nothing before there is an entry.
    FSWatcherWorker();
    /// Ends the thread. To be called by the destructor of the platform's worker: the thread may be
    /// on its way into one of the virtual functions.
    void stopThread();

private:
    void run();
    bool waitForWatchers();
    bool isIdle();
    void round();
    void wake();
    bool startFor(FileSystemWatcher* watcher, const std::string& path, bool recursive);
    void call(const Registration& registration, const std::string& path,
              FileSystemWatcherInfo info);

    WatcherRegistry _registry;
    RegistryMutex _registryMutex;
    thread::Mutex _wakeMutex;
    thread::ConditionVariable _wakeCondition;
    util::ScopedPtr<thread::Thread> _thread;
    std::atomic<bool> _running = true;

    /// Guarded by _wakeMutex.
    bool _isWoken = false;
    std::atomic<bool> _isAbandoned = false;
    std::atomic<std::thread::id> _threadId;
    /// Outlives the worker where its own thread destroys it.
    const std::shared_ptr<std::atomic<bool>> _isLeftAlone =
        std::make_shared<std::atomic<bool>>(false);
};

}  // namespace tav::ula
