// SPDX-License-Identifier: MIT
#include "EventStream.h"

#include "EventCollector.h"

#include <algorithm>
#include <cstdio>

namespace fsevents {

namespace {

using Clock = EventStream::Clock;

// A client that does not come round to reading is not to fill the memory.
constexpr std::size_t kMostPending = 250000;

Clock::duration durationOf(CFTimeInterval seconds) {
    constexpr CFTimeInterval kLongest = 3600;
    const std::chrono::duration<double> limited(seconds > 0 ? std::min(seconds, kLongest) : 0.0);
    return std::chrono::duration_cast<Clock::duration>(limited);
}

// The latency is from a change to the call of the client. What two threads take to wake up is not
// to come on top of it; of a short latency it is a small part, too.
Clock::duration waitWithin(Clock::duration latency) {
    constexpr Clock::duration kWayToTheRunLoop = std::chrono::microseconds(250);
    return latency - std::min(latency / 400, kWayToTheRunLoop);
}

const void* retainStream(const void* info) {
    static_cast<EventStream*>(const_cast<void*>(info))->retain();
    return info;
}

void releaseStream(const void* info) {
    static_cast<EventStream*>(const_cast<void*>(info))->release();
}

}  // namespace

EventStream::EventStream(FSEventStreamCallback callback, const FSEventStreamContext& context,
                         std::vector<std::string> roots, FSEventStreamEventId sinceWhen,
                         CFTimeInterval latencySeconds, FSEventStreamCreateFlags flags)
    : _callback(callback),
      _context(context),
      _roots(std::move(roots)),
      _sinceWhen(sinceWhen),
      _wait(waitWithin(durationOf(latencySeconds))),
      _flags(flags) {
    if (_context.retain != nullptr)
        _context.retain(_context.info);
    CFRunLoopSourceContext source{};
    source.info = this;
    source.retain = retainStream;
    source.release = releaseStream;
    source.perform = perform;
    _source = CFRunLoopSourceCreate(kCFAllocatorDefault, 0, &source);
}

EventStream::~EventStream() {
    if (_context.release != nullptr)
        _context.release(_context.info);
}

void EventStream::schedule(CFRunLoopRef runLoop, CFStringRef mode) {
    if (_source == nullptr)
        return;
    CFRunLoopAddSource(runLoop, _source, mode);
    CFRetain(runLoop);
    CFRetain(mode);
    _schedule.emplace_back(runLoop, mode);
    if (_isTold)
        tellRunLoop();
}

void EventStream::unschedule(CFRunLoopRef runLoop, CFStringRef mode) {
    const auto place = std::find_if(_schedule.begin(), _schedule.end(), [&](const auto& entry) {
        return entry.first == runLoop && CFEqual(entry.second, mode);
    });
    if (place == _schedule.end())
        return;
    CFRunLoopRemoveSource(runLoop, _source, mode);
    CFRelease(place->first);
    CFRelease(place->second);
    _schedule.erase(place);
}

void EventStream::invalidate() {
    while (!_schedule.empty()) {
        const auto [runLoop, mode] = _schedule.back();
        unschedule(runLoop, mode);
    }
    if (_source == nullptr)
        return;
    CFRunLoopSourceInvalidate(_source);
    CFRelease(_source);
    _source = nullptr;
}

void EventStream::notePending() {
    if (_pending.empty())
        _pendingSince = Clock::now();
}

void EventStream::recordItem(const std::string& folder, std::string_view name,
                             FSEventStreamEventFlags flags, FSEventStreamEventId id) {
    notePending();
    std::string path = folder;
    if (!tellsItems())
        return _pending.addOnce(std::move(path), kFSEventStreamEventFlagNone, id);
    path.append(name);
    if (name.empty() && path.size() > 1)
        path.pop_back();
    _pending.append(std::move(path), flags, id);
}

void EventStream::record(std::string path, FSEventStreamEventFlags flags, FSEventStreamEventId id) {
    notePending();
    if (tellsItems())
        _pending.append(std::move(path), flags, id);
    else
        _pending.addOnce(std::move(path), flags, id);
}

bool EventStream::hasRootOf(const std::string& path) const {
    return std::any_of(_roots.begin(), _roots.end(), [&](const std::string& root) {
        return path.starts_with(root) && (path.size() == root.size() || path[root.size()] == '/');
    });
}

void EventStream::takeOver(EventStream& other) {
    if (other._pending.empty() || tellsItems() != other.tellsItems())
        return;
    const Clock::time_point since = _pending.empty() ? other._pendingSince : _pendingSince;
    for (Event& event : other._pending.take())
        if (hasRootOf(event.path))
            record(std::move(event.path), event.flags, event.id);
    _pendingSince = since;
}

void EventStream::collapse(FSEventStreamEventId id) {
    _pending.clear();
    for (const std::string& root : _roots)
        record(root + "/", kFSEventStreamEventFlagMustScanSubDirs, id);
}

bool EventStream::isFull() const {
    return _pending.size() >= kMostPending;
}

Clock::time_point EventStream::due() const {
    if (!_isStarted || _isTold || _pending.empty())
        return Clock::time_point::max();
    if (_isUrgent)
        return Clock::time_point::min();
    const bool defers = (_flags & kFSEventStreamCreateFlagNoDefer) == 0;
    return (defers ? _pendingSince : _takenAt) + _wait;
}

void EventStream::tellRunLoop() {
    _isTold = true;
    if (_source == nullptr)
        return;
    CFRunLoopSourceSignal(_source);
    for (const auto& [runLoop, mode] : _schedule)
        CFRunLoopWakeUp(runLoop);
}

std::vector<Event> EventStream::takePending() {
    _isTold = false;
    _isUrgent = false;
    if (!_isStarted)
        return {};
    _takenAt = Clock::now();
    std::vector<Event> events = _pending.take();
    for (const Event& event : events)
        _latestId = std::max(_latestId.load(), event.id);
    return events;
}

void EventStream::perform(void* info) {
    auto& stream = *static_cast<EventStream*>(info);
    stream.deliver(EventCollector::ofProcess().take(stream));
}

void EventStream::deliver(const std::vector<Event>& events) {
    if (events.empty())
        return;
    std::vector<const char*> paths;
    std::vector<FSEventStreamEventFlags> flags;
    std::vector<FSEventStreamEventId> ids;
    for (const Event& event : events) {
        paths.push_back(event.path.c_str());
        flags.push_back(event.flags);
        ids.push_back(event.id);
    }
    // The client may let go of the stream.
    retain();
    _callback(reference(), _context.info, events.size(), paths.data(), flags.data(), ids.data());
    release();
}

void EventStream::show() const {
    fprintf(stderr, "FSEventStream: %s, latest event %llu\n", _isStarted ? "started" : "stopped",
            static_cast<unsigned long long>(_latestId.load()));
    for (const std::string& root : _roots)
        fprintf(stderr, "    %s\n", root.empty() ? "/" : root.c_str());
}

}  // namespace fsevents
