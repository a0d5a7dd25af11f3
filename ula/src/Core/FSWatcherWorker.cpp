// SPDX-License-Identifier: MIT
#include "ula/src/Core/FSWatcherWorker.h"

#include "ula/foundation/Exception.h"
#include "ula/foundation/debug/Log.h"

namespace tav::ula {

namespace {

using Lock = thread::ScopedLock<thread::Mutex>;
using RegistryLock = thread::ScopedLock<RegistryMutex>;

constexpr double kPeriodSeconds = 0.1;

}  // namespace

FSWatcherWorker::FSWatcherWorker() {
    _thread.reset(new thread::Thread([this] { run(); }));
}

FSWatcherWorker::~FSWatcherWorker() {
    stopThread();
}

std::string FSWatcherWorker::getOSDebugString() {
    return {};
}

void FSWatcherWorker::afterPoll() {
}

std::string FSWatcherWorker::normalizePath(const std::string& path) {
    return path;
}

void FSWatcherWorker::stopThread() {
    if (!_thread)
        return;
    _running = false;
    wake();
    if (_threadId == std::this_thread::get_id()) {
        *_isLeftAlone = true;
        afterPoll();
        _thread->detach();
    } else {
        _thread->interrupt();
        _thread->join();
    }
    _thread.reset();
}

void FSWatcherWorker::wake() {
    const Lock lock(_wakeMutex);
    _isWoken = true;
    _wakeCondition.notify_all();
}

void FSWatcherWorker::run() {
    _threadId = std::this_thread::get_id();
    const auto isLeftAlone = _isLeftAlone;
    while (waitForWatchers()) {
        if (auto self = weak_from_this().lock()) {
            self->round();
            self.reset();
            if (*isLeftAlone)
                return;
        }
        try {
            thread::Thread::sleep(kPeriodSeconds);
        } catch (const thread::ThreadInterruptedException&) {
            // The end, of which the next look at `_running` tells.
        }
    }
    afterPoll();
}

/// False at the end.
bool FSWatcherWorker::waitForWatchers() {
    while (_running && isIdle()) {
        Lock lock(_wakeMutex);
        while (!_isWoken)
            _wakeCondition.wait(lock);
        _isWoken = false;
    }
    return _running;
}

bool FSWatcherWorker::isIdle() {
    const RegistryLock lock(_registryMutex);
    return !hasWatchers();
}

void FSWatcherWorker::round() {
    const RegistryLock lock(_registryMutex);
    if (_running)
        poll();
    afterPoll();
}

void FSWatcherWorker::registerWatcher(FileSystemWatcher* watcher, const std::string& path,
                                      bool recursive) {
    {
        const RegistryLock lock(_registryMutex);
        if (!startFor(watcher, normalizePath(path), recursive))
            return;
    }
    wake();
}

/// True when something new is watched.
bool FSWatcherWorker::startFor(FileSystemWatcher* watcher, const std::string& path,
                               bool recursive) {
    const bool isWatched = _registry.isWatched(path);
    _registry.add(watcher, path);
    if (isWatched)
        return false;
    if (startWatching(path, recursive))
        return true;
    _registry.remove(watcher);
    return false;
}

void FSWatcherWorker::unregisterWatcher(FileSystemWatcher* watcher) {
    {
        const RegistryLock lock(_registryMutex);
        const std::string path = _registry.pathOf(watcher);
        _registry.remove(watcher);
        if (!path.empty() && !_registry.hasEntryOf(path))
            stopWatching(path);
    }
    if (!_registry.isCalledElsewhere(watcher))
        return;
    // In a slot on the worker's thread the lock is held, and the slot that is waited for may want
    // it.
    const int depth = _registryMutex.giveUp();
    _registry.waitForCalls(watcher);
    _registryMutex.takeBack(depth);
}

void FSWatcherWorker::setWatcherEnabled(FileSystemWatcher* watcher, bool enabled) {
    const RegistryLock lock(_registryMutex);
    setEnabled(enabled, _registry.pathOf(watcher));
}

std::string FSWatcherWorker::debugString() {
    const RegistryLock lock(_registryMutex);
    return " - registeredWatcherCount: " + std::to_string(_registry.size()) + " " +
           getOSDebugString() + "\n";
}

void FSWatcherWorker::notify(const std::string& watchedPath, const std::string& actualPath,
                             FileSystemWatcherInfo info) {
    const bool isRemoved = info == PathRemoved;
    // Copies: a slot may end whatever the paths belong to.
    const std::string path = actualPath.empty() ? watchedPath : actualPath;
    const std::vector<Registration> registrations =
        isRemoved ? _registry.takeLeaveOf(watchedPath) : _registry.entriesOf(watchedPath);
    for (const Registration& registration : registrations)
        if (_running)
            call(registration, path, info);
    if (isRemoved && !_isAbandoned)
        _registry.remove(registrations);
}

void FSWatcherWorker::call(const Registration& registration, const std::string& path,
                           FileSystemWatcherInfo info) {
    if (!_registry.beginCall(registration))
        return;
    try {
        registration.watcher->emit(path, info);
    } catch (...) {
        debug::logf("src/Core/FSWatcherWorker", 1, debug::LogLevelError,
                    "a slot of the watcher of %* has thrown: %*")
            .add(path.c_str())
            .add(describeCurrentException());
    }
    // In a child that was forked by the slot the registry may be locked for ever.
    if (!_isAbandoned)
        _registry.endCall(registration);
}

void FSWatcherWorker::abandon() {
    _isAbandoned = true;
    _running = false;
}

}  // namespace tav::ula
