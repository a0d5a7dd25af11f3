// SPDX-License-Identifier: MIT
#pragma once

#include "sys/WatchedItem.h"

#include <deque>
#include <memory>
#include <mutex>
#include <span>
#include <unordered_map>
#include <vector>

struct inotify_event;

namespace kernelqueue {

/// What is behind one queue's descriptor, which is an inotify instance and belongs to whoever asked
/// for the queue.
/// Thread: any.
class EventQueue {
public:
    explicit EventQueue(int descriptor) : _descriptor(descriptor) {}
    ~EventQueue();
    EventQueue(const EventQueue&) = delete;
    EventQueue& operator=(const EventQueue&) = delete;

    /// Makes the changes. The failed ones go into `errors`, and their number is returned; -1 and
    /// errno when there is no room.
    int apply(std::span<const struct kevent> changes, std::span<struct kevent> errors);
    /// The events that there are, up to the room for them.
    int collect(std::span<struct kevent> events);
    /// Waits until there may be an event.
    /// Units: milliseconds; negative is for ever. Fails: -1 and errno.
    int wait(int milliseconds);

private:
    using Item = std::unique_ptr<WatchedItem>;

    int change(const struct kevent& change);
    int add(const struct kevent& change);
    int addNew(const struct kevent& change);
    int watch(WatchedItem& item);
    int remove(int descriptor);
    void forget(WatchedItem& item);
    void unwatch(WatchedItem& item);
    void forgetClosed();
    void forgetJustClosed();

    void drain();
    void read(const inotify_event& event);
    void see(WatchedItem& item, std::uint32_t mask);
    void lookAtHeldFolders();
    void concludeAll();
    void ring();

    const int _descriptor;
    std::mutex _mutex;
    std::unordered_map<int, Item> _items;
    /// By inotify's number: several descriptors may lead to one item.
    std::unordered_map<int, std::vector<WatchedItem*>> _watches;
    /// Seen since the last conclusion, in order.
    std::vector<WatchedItem*> _seen;
    /// Pending, in the order in which they became so.
    std::deque<WatchedItem*> _ready;
    /// Removed, and perhaps closed by now.
    std::vector<int> _justRemoved;
    std::size_t _heldFolders = 0;

    /// Rung for those who wait when another thread has read what they wait for.
    int _bell = -1;
    int _waiting = 0;
};

}  // namespace kernelqueue
