// SPDX-License-Identifier: MIT
#include "ula/src/Mac/FSWatcherWorkerMacKQueue.h"

#include "ula/foundation/debug/Assertion.h"
#include "ula/foundation/filesystem/FileSystem.h"
#include "ula/src/Core/FSWatcherWorker.h"

#include <algorithm>
#include <sys/event.h>
#include <sys/fcntl.h>
#include <unistd.h>

namespace tav::ula {

namespace {

constexpr const char* kSource = "src/Mac/FSWatcherWorkerMacKQueue";

constexpr std::uint32_t kFolderEvents =
    NOTE_DELETE | NOTE_WRITE | NOTE_EXTEND | NOTE_RENAME | NOTE_REVOKE;
constexpr std::uint32_t kFileEvents = kFolderEvents | NOTE_ATTRIB;
constexpr std::uint32_t kRemovals = NOTE_DELETE | NOTE_RENAME | NOTE_REVOKE;

}  // namespace

FSWatcherWorkerMacKQueue::FSWatcherWorkerMacKQueue(FSWatcherWorker* worker)
    : _kqueue(kqueue()), _worker(worker) {
    if (_kqueue == -1)
        debug::assertionFailed(kSource, 32, "_kqueue != -1");
}

FSWatcherWorkerMacKQueue::~FSWatcherWorkerMacKQueue() {
    for (const auto& [path, item] : _items)
        close(item.descriptor);
    if (_kqueue != -1)
        close(_kqueue);
}

int FSWatcherWorkerMacKQueue::change(const Item& item, std::uint16_t flags) const {
    struct kevent wanted {};
    EV_SET(&wanted, static_cast<uintptr_t>(item.descriptor), EVFILT_VNODE, flags, item.events, 0,
           nullptr);
    return kevent(_kqueue, &wanted, 1, nullptr, 0, nullptr);
}

bool FSWatcherWorkerMacKQueue::start(const std::string& path) {
    const int fd = open(path.c_str(), O_EVTONLY);
    if (fd == -1) {
        debug::assertionFailed(kSource, 52, "fd != -1");
        return false;
    }
    const bool isFolder = filesystem::isDirectory(path);
    const Item item{fd, isFolder ? kFolderEvents : kFileEvents, ++_lastNumber};
    if (change(item, EV_ADD | EV_CLEAR) == -1) {
        close(fd);
        return false;
    }
    // One is left when a slot that is told of the removal watches the path anew.
    stop(path);
    _items.emplace(path, item);
    return true;
}

void FSWatcherWorkerMacKQueue::stop(const std::string& path) {
    const auto found = _items.find(path);
    if (found == _items.end())
        return;
    change(found->second, EV_DELETE);
    close(found->second.descriptor);
    _items.erase(found);
}

void FSWatcherWorkerMacKQueue::poll() {
    struct kevent event {};
    const timespec noWait{0, 0};
    if (kevent(_kqueue, nullptr, 0, &event, 1, &noWait) <= 0)
        return;
    const auto found = std::ranges::find_if(_items, [&event](const auto& entry) {
        return static_cast<uintptr_t>(entry.second.descriptor) == event.ident;
    });
    const bool isKnown = found != _items.end();
    const std::string path = isKnown ? found->first : std::string();
    const std::uint64_t number = isKnown ? found->second.number : 0;
    if (path.empty())
        debug::assertionFailed(kSource, 138, "!path.empty()");
    const bool isRemoved = (event.fflags & kRemovals) != 0;
    _worker->notify(path, std::string(), isRemoved ? PathRemoved : PathChanged);
    if (isRemoved && (!isKnown || isStill(path, number)))
        _worker->stopWatching(path);
}

/// False when a slot has watched the path anew, or stopped.
bool FSWatcherWorkerMacKQueue::isStill(const std::string& path, std::uint64_t number) const {
    const auto found = _items.find(path);
    return found != _items.end() && found->second.number == number;
}

void FSWatcherWorkerMacKQueue::setEnabled(bool enabled, const std::string& path) {
    const auto found = _items.find(path);
    if (found == _items.end())
        return;
    const int ret = change(found->second, enabled ? EV_ADD | EV_CLEAR : EV_DELETE);
    if (ret == -1)
        debug::assertionFailed(kSource, 95, "ret != -1");
}

std::string FSWatcherWorkerMacKQueue::getOSDebugString() const {
    std::string text = "getOSDebugString FSWatcherWorkerMac registered: ";
    for (const auto& [path, item] : _items)
        text += "|" + path + " fd: " + std::to_string(item.descriptor) +
                " observe: " + std::to_string(item.events) + "|";
    return text + "\n";
}

}  // namespace tav::ula
