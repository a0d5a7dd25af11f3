// SPDX-License-Identifier: MIT
#pragma once

#include "CoreServices/FSEvents.h"
#include "PendingEvents.h"

#include <atomic>
#include <chrono>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace fsevents {

// What is behind a reference to a stream. Counted: it lives while somebody retains it and while it
// is scheduled.
// Thread: what is marked "collector" is called with the collector's lock held.
class EventStream {
public:
    using Clock = std::chrono::steady_clock;

    static EventStream& of(FSEventStreamRef reference) {
        return *reinterpret_cast<EventStream*>(reference);
    }
    static const EventStream& of(ConstFSEventStreamRef reference) {
        return *reinterpret_cast<const EventStream*>(reference);
    }
    FSEventStreamRef reference() { return reinterpret_cast<FSEventStreamRef>(this); }

    EventStream(FSEventStreamCallback callback, const FSEventStreamContext& context,
                std::vector<std::string> roots, FSEventStreamEventId sinceWhen,
                CFTimeInterval latencySeconds, FSEventStreamCreateFlags flags);
    EventStream(const EventStream&) = delete;
    EventStream& operator=(const EventStream&) = delete;

    void retain() { _references.fetch_add(1); }
    void release() {
        if (_references.fetch_sub(1) == 1)
            delete this;
    }

    // Absolute, without a slash at the end; "" is "/".
    const std::vector<std::string>& roots() const { return _roots; }
    bool watchesRoots() const { return (_flags & kFSEventStreamCreateFlagWatchRoot) != 0; }
    bool tellsItems() const { return (_flags & kFSEventStreamCreateFlagFileEvents) != 0; }
    bool wantsHistory() const { return _sinceWhen != kFSEventStreamEventIdSinceNow; }
    FSEventStreamEventId latestEventId() const { return _latestId; }
    void show() const;

    // Collector.
    void schedule(CFRunLoopRef runLoop, CFStringRef mode);
    // Collector.
    void unschedule(CFRunLoopRef runLoop, CFStringRef mode);
    // Collector.
    void invalidate();

    // Collector.
    bool isStarted() const { return _isStarted; }
    void setStarted(bool isStarted) { _isStarted = isStarted; }
    // Collector. The folder is a path with a slash at the end.
    void recordItem(const std::string& folder, std::string_view name, FSEventStreamEventFlags flags,
                    FSEventStreamEventId id);
    // Collector. Of the path itself.
    void record(std::string path, FSEventStreamEventFlags flags, FSEventStreamEventId id);
    // Collector. What another stream had to tell and this one has roots for.
    void takeOver(EventStream& other);
    // Collector. Everything that is pending gives way to one word for each root.
    void collapse(FSEventStreamEventId id);
    bool isFull() const;
    // Collector. Has it told soon.
    void hurry() { _isUrgent = true; }
    // Collector. When the run loop is to be told; the end of time for never.
    Clock::time_point due() const;
    // Collector.
    void tellRunLoop();
    std::vector<Event> takePending();

    // Calls the client, in this thread and without the collector's lock.
    void deliver(const std::vector<Event>& events);

private:
    ~EventStream();
    static void perform(void* info);
    bool hasRootOf(const std::string& path) const;
    void notePending();

    std::atomic<int> _references = 1;
    const FSEventStreamCallback _callback;
    const FSEventStreamContext _context;
    const std::vector<std::string> _roots;
    const FSEventStreamEventId _sinceWhen;
    const Clock::duration _wait;
    const FSEventStreamCreateFlags _flags;

    PendingEvents _pending;
    bool _isStarted = false;
    bool _isTold = false;
    bool _isUrgent = false;
    Clock::time_point _pendingSince;
    // Long ago: the clock may begin with the computer, which may run for less than the latency.
    Clock::time_point _takenAt = Clock::time_point::min();
    std::atomic<FSEventStreamEventId> _latestId = 0;

    // Guarded by the collector's lock. The loops and modes are retained.
    CFRunLoopSourceRef _source = nullptr;
    std::vector<std::pair<CFRunLoopRef, CFStringRef>> _schedule;
};

}  // namespace fsevents
