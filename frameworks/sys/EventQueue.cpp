// SPDX-License-Identifier: MIT
#include "sys/EventQueue.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace kernelqueue {

namespace {

/// How often a folder that a descriptor holds is looked at: nothing tells that it was removed.
constexpr int kLookMs = 100;

constexpr std::uint32_t kOfItself =
    IN_ATTRIB | IN_MODIFY | IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT;
constexpr std::uint32_t kOfEntries = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_ISDIR;

}  // namespace

EventQueue::~EventQueue() {
    if (_bell >= 0)
        close(_bell);
}

int EventQueue::apply(std::span<const struct kevent> changes, std::span<struct kevent> errors) {
    std::lock_guard lock(_mutex);
    // What happened before a change is judged by what was asked for before it.
    drain();
    std::size_t failed = 0;
    for (const struct kevent& wanted : changes) {
        const int error = change(wanted);
        if (error == 0)
            continue;
        if (failed == errors.size()) {
            errno = error;
            return -1;
        }
        errors[failed] = wanted;
        errors[failed].flags = EV_ERROR;
        errors[failed++].data = error;
    }
    ring();
    return static_cast<int>(failed);
}

int EventQueue::change(const struct kevent& change) {
    if (change.filter != EVFILT_VNODE)
        return EINVAL;
    const int descriptor = static_cast<int>(change.ident);
    if (fcntl(descriptor, F_GETFD) < 0)
        return EBADF;
    if (change.flags & EV_DELETE)
        return remove(descriptor);
    if (change.flags & EV_ADD)
        return add(change);
    const auto found = _items.find(descriptor);
    return found != _items.end() && found->second->isAsked() ? 0 : ENOENT;
}

int EventQueue::add(const struct kevent& change) {
    const auto found = _items.find(static_cast<int>(change.ident));
    if (found != _items.end() && found->second->isOpen()) {
        found->second->ask(change);
        return 0;
    }
    if (found != _items.end())
        forget(*found->second);
    return addNew(change);
}

int EventQueue::addNew(const struct kevent& change) {
    const int descriptor = static_cast<int>(change.ident);
    Item item = WatchedItem::openedAs(descriptor);
    if (!item)
        return errno;
    if (const int error = watch(*item))
        return error;
    if (!item->letGo()) {
        const int error = errno;
        unwatch(*item);
        return error;
    }
    item->ask(change);
    if (item->isHeld() && item->isFolder())
        ++_heldFolders;
    _items[descriptor] = std::move(item);
    return 0;
}

int EventQueue::watch(WatchedItem& item) {
    const std::string path = "/proc/self/fd/" + std::to_string(item.descriptor());
    int watch = inotify_add_watch(_descriptor, path.c_str(), item.watchMask());
    if (watch < 0 && errno == ENOSPC) {
        forgetClosed();
        watch = inotify_add_watch(_descriptor, path.c_str(), item.watchMask());
    }
    if (watch < 0) {
        const int error = errno;
        if (error == ENOSPC)
            std::fprintf(stderr, "kevent: an item cannot be watched: "
                                 "raise the limit fs.inotify.max_user_watches\n");
        return error;
    }
    item.setWatch(watch);
    _watches[watch].push_back(&item);
    return 0;
}

int EventQueue::remove(int descriptor) {
    const auto found = _items.find(descriptor);
    if (found == _items.end())
        return ENOENT;
    WatchedItem& item = *found->second;
    const bool isOpen = item.isOpen();
    const bool wasAsked = item.isAsked() && isOpen;
    if (item.isHeld() || !isOpen) {
        forget(item);
        return wasAsked ? 0 : ENOENT;
    }
    // It may be added again, and nothing but its watch knows the item by now.
    item.stopAsking();
    std::erase(_ready, &item);
    _justRemoved.push_back(descriptor);
    return wasAsked ? 0 : ENOENT;
}

void EventQueue::unwatch(WatchedItem& item) {
    const auto found = _watches.find(item.watch());
    if (found == _watches.end())
        return;
    std::erase(found->second, &item);
    if (!found->second.empty())
        return;
    inotify_rm_watch(_descriptor, item.watch());
    _watches.erase(found);
}

void EventQueue::forget(WatchedItem& item) {
    unwatch(item);
    std::erase(_ready, &item);
    std::erase(_seen, &item);
    if (item.isHeld() && item.isFolder())
        --_heldFolders;
    _items.erase(item.descriptor());
}

/// Closing a descriptor removes it from every queue, but says so to nobody.
void EventQueue::forgetClosed() {
    std::vector<WatchedItem*> closed;
    for (const auto& [descriptor, item] : _items)
        if (!item->isOpen())
            closed.push_back(item.get());
    for (WatchedItem* item : closed)
        forget(*item);
}

void EventQueue::forgetJustClosed() {
    for (const int descriptor : _justRemoved) {
        const auto found = _items.find(descriptor);
        if (found != _items.end() && !found->second->isOpen())
            forget(*found->second);
    }
    _justRemoved.clear();
}

void EventQueue::drain() {
    forgetJustClosed();
    int left = 0;
    if (ioctl(_descriptor, FIONREAD, &left) != 0)
        return;
    alignas(inotify_event) char buffer[65536];
    while (left > 0) {
        const ssize_t length = ::read(_descriptor, buffer, sizeof buffer);
        if (length <= 0)
            break;
        left -= static_cast<int>(length);
        for (const char* at = buffer; at < buffer + length;) {
            const auto* const event = reinterpret_cast<const inotify_event*>(at);
            read(*event);
            at += sizeof *event + event->len;
        }
    }
    lookAtHeldFolders();
    concludeAll();
}

void EventQueue::read(const inotify_event& event) {
    if (event.mask & IN_Q_OVERFLOW)
        for (const auto& [descriptor, item] : _items)
            if (item->seeAnything())
                _seen.push_back(item.get());
    const auto found = _watches.find(event.wd);
    if (found == _watches.end())
        return;
    // What has a name happened to an entry.
    const std::uint32_t mask = event.mask & (event.len != 0 ? kOfEntries : kOfItself);
    for (WatchedItem* item : found->second)
        see(*item, mask);
    if ((event.mask & IN_IGNORED) == 0)
        return;
    for (WatchedItem* item : found->second)
        item->setWatch(-1);
    _watches.erase(found);
}

void EventQueue::see(WatchedItem& item, std::uint32_t mask) {
    if (item.see(mask))
        _seen.push_back(&item);
}

void EventQueue::lookAtHeldFolders() {
    if (_heldFolders == 0)
        return;
    for (const auto& [descriptor, item] : _items)
        if (item->isHeld() && item->isFolder() && item->wasJustRemoved())
            see(*item, IN_ATTRIB);
}

void EventQueue::concludeAll() {
    for (WatchedItem* item : _seen)
        if (item->conclude())
            _ready.push_back(item);
    _seen.clear();
}

int EventQueue::collect(std::span<struct kevent> events) {
    std::lock_guard lock(_mutex);
    drain();
    std::size_t count = 0;
    for (std::size_t left = _ready.size(); left > 0 && count < events.size(); --left) {
        WatchedItem* const item = _ready.front();
        if (!item->isOpen()) {
            forget(*item);
            continue;
        }
        _ready.pop_front();
        events[count++] = item->event();
        if (item->staysAfterReturn())
            _ready.push_back(item);
    }
    ring();
    return static_cast<int>(count);
}

void EventQueue::ring() {
    if (_waiting > 0 && !_ready.empty())
        eventfd_write(_bell, 1);
}

int EventQueue::wait(int milliseconds) {
    {
        std::lock_guard lock(_mutex);
        if (!_ready.empty())
            return 0;
        if (_bell < 0)
            _bell = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
        if (_bell < 0)
            return -1;
        ++_waiting;
        if (_heldFolders > 0)
            milliseconds = milliseconds < 0 ? kLookMs : std::min(milliseconds, kLookMs);
    }
    pollfd waits[] = {{_descriptor, POLLIN, 0}, {_bell, POLLIN, 0}};
    const int result = poll(waits, 2, milliseconds);
    const int error = errno;
    std::lock_guard lock(_mutex);
    --_waiting;
    eventfd_t rings = 0;
    eventfd_read(_bell, &rings);
    errno = error;
    return result;
}

}  // namespace kernelqueue
