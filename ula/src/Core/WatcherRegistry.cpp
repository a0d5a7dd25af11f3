// SPDX-License-Identifier: MIT
#include "ula/src/Core/WatcherRegistry.h"

#include <algorithm>

namespace tav::ula {

void WatcherRegistry::add(FileSystemWatcher* watcher, const std::string& path) {
    const Lock lock(_mutex);
    if (_entries.try_emplace(watcher, Entry{path, ++_lastNumber}).second)
        _byPath[path].insert(watcher);
}

void WatcherRegistry::remove(FileSystemWatcher* watcher) {
    const Lock lock(_mutex);
    removeLocked(watcher);
}

void WatcherRegistry::remove(const std::vector<Registration>& registrations) {
    const Lock lock(_mutex);
    for (const Registration& registration : registrations) {
        const auto found = _entries.find(registration.watcher);
        if (found != _entries.end() && found->second.number == registration.number)
            removeLocked(registration.watcher);
    }
}

void WatcherRegistry::removeLocked(FileSystemWatcher* watcher) {
    const auto found = _entries.find(watcher);
    if (found == _entries.end())
        return;
    const auto watchers = _byPath.find(found->second.path);
    watchers->second.erase(watcher);
    if (watchers->second.empty())
        _byPath.erase(watchers);
    _entries.erase(found);
}

bool WatcherRegistry::isWatched(const std::string& path) const {
    const Lock lock(_mutex);
    const auto found = _byPath.find(path);
    return found != _byPath.end() &&
           std::ranges::any_of(found->second, [this](FileSystemWatcher* watcher) {
               return !_entries.at(watcher).isLeaving;
           });
}

bool WatcherRegistry::hasEntryOf(const std::string& path) const {
    const Lock lock(_mutex);
    return _byPath.contains(path);
}

std::string WatcherRegistry::pathOf(FileSystemWatcher* watcher) const {
    const Lock lock(_mutex);
    const auto found = _entries.find(watcher);
    return found == _entries.end() ? std::string() : found->second.path;
}

std::size_t WatcherRegistry::size() const {
    const Lock lock(_mutex);
    return _entries.size();
}

std::vector<Registration> WatcherRegistry::entriesOf(const std::string& path) const {
    const Lock lock(_mutex);
    return entriesLocked(path);
}

std::vector<Registration> WatcherRegistry::takeLeaveOf(const std::string& path) {
    const Lock lock(_mutex);
    const std::vector<Registration> entries = entriesLocked(path);
    for (const Registration& entry : entries)
        _entries.at(entry.watcher).isLeaving = true;
    return entries;
}

std::vector<Registration> WatcherRegistry::entriesLocked(const std::string& path) const {
    std::vector<Registration> entries;
    if (const auto found = _byPath.find(path); found != _byPath.end())
        for (FileSystemWatcher* watcher : found->second)
            entries.push_back({watcher, _entries.at(watcher).number});
    return entries;
}

bool WatcherRegistry::beginCall(const Registration& registration) {
    const Lock lock(_mutex);
    const auto found = _entries.find(registration.watcher);
    if (found == _entries.end() || found->second.number != registration.number)
        return false;
    _calls.push_back({registration.watcher, std::this_thread::get_id()});
    return true;
}

void WatcherRegistry::endCall(const Registration& registration) {
    const Lock lock(_mutex);
    // The last one: calls of one thread lie within each other.
    const auto last = std::find_if(_calls.rbegin(), _calls.rend(), [&](const Call& call) {
        return call.watcher == registration.watcher && call.thread == std::this_thread::get_id();
    });
    if (last != _calls.rend())
        _calls.erase(std::next(last).base());
    _callEnded.notify_all();
}

void WatcherRegistry::waitForCalls(FileSystemWatcher* watcher) {
    Lock lock(_mutex);
    while (isCalledElsewhereLocked(watcher))
        _callEnded.wait(lock);
}

bool WatcherRegistry::isCalledElsewhere(FileSystemWatcher* watcher) const {
    const Lock lock(_mutex);
    return isCalledElsewhereLocked(watcher);
}

bool WatcherRegistry::isCalledElsewhereLocked(FileSystemWatcher* watcher) const {
    return std::ranges::any_of(_calls, [watcher](const Call& call) {
        return call.watcher == watcher && call.thread != std::this_thread::get_id();
    });
}

}  // namespace tav::ula
