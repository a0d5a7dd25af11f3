// SPDX-License-Identifier: MIT
#include "CoreServices/FSEvents.h"

#include "CoreFoundation/Guarded.h"
#include "FSEvents/EventCollector.h"

#include <string>
#include <vector>

using fsevents::EventCollector;
using fsevents::EventStream;

namespace {

// Fails: false for what cannot be a path.
bool bytesOf(CFStringRef text, std::string* bytes) {
    const CFIndex room =
        CFStringGetMaximumSizeForEncoding(CFStringGetLength(text), kCFStringEncodingUTF8) + 1;
    bytes->resize(static_cast<std::size_t>(room));
    if (!CFStringGetCString(text, bytes->data(), room, kCFStringEncodingUTF8))
        return false;
    bytes->resize(bytes->find('\0'));
    return bytes->starts_with('/');
}

std::vector<std::string> rootsOf(CFArrayRef paths) {
    std::vector<std::string> roots;
    for (CFIndex index = 0; index < CFArrayGetCount(paths); ++index) {
        std::string root;
        if (!bytesOf(static_cast<CFStringRef>(CFArrayGetValueAtIndex(paths, index)), &root))
            continue;
        root.resize(root.find_last_not_of('/') + 1);
        roots.push_back(std::move(root));
    }
    return roots;
}

std::lock_guard<std::mutex> lockCollector() {
    return std::lock_guard(EventCollector::ofProcess().mutex());
}

}  // namespace

FSEventStreamRef FSEventStreamCreate(CFAllocatorRef, FSEventStreamCallback callback,
                                     FSEventStreamContext* context, CFArrayRef pathsToWatch,
                                     FSEventStreamEventId sinceWhen, CFTimeInterval latency,
                                     FSEventStreamCreateFlags flags) {
    const FSEventStreamContext given = context != nullptr ? *context : FSEventStreamContext{};
    if (callback == nullptr || given.version != 0 || pathsToWatch == nullptr)
        return nullptr;
    const FSEventStreamRef none = nullptr;
    return cf::guarded(none, none, [&]() -> FSEventStreamRef {
        std::vector<std::string> roots = rootsOf(pathsToWatch);
        if (roots.empty())
            return nullptr;
        return (new EventStream(callback, given, std::move(roots), sinceWhen, latency, flags))
            ->reference();
    });
}

void FSEventStreamRetain(FSEventStreamRef stream) {
    EventStream::of(stream).retain();
}

void FSEventStreamRelease(FSEventStreamRef stream) {
    EventStream::of(stream).release();
}

void FSEventStreamScheduleWithRunLoop(FSEventStreamRef stream, CFRunLoopRef runLoop,
                                      CFStringRef runLoopMode) {
    const auto lock = lockCollector();
    EventStream::of(stream).schedule(runLoop, runLoopMode);
}

void FSEventStreamUnscheduleFromRunLoop(FSEventStreamRef stream, CFRunLoopRef runLoop,
                                        CFStringRef runLoopMode) {
    const auto lock = lockCollector();
    EventStream::of(stream).unschedule(runLoop, runLoopMode);
}

Boolean FSEventStreamStart(FSEventStreamRef stream) {
    return cf::guarded(false, false,
                       [&] { return EventCollector::ofProcess().start(EventStream::of(stream)); });
}

void FSEventStreamStop(FSEventStreamRef stream) {
    EventCollector::ofProcess().stop(EventStream::of(stream));
}

void FSEventStreamInvalidate(FSEventStreamRef stream) {
    FSEventStreamStop(stream);
    EventStream& ended = EventStream::of(stream);
    ended.retain();
    {
        const auto lock = lockCollector();
        ended.invalidate();
    }
    // Not with the lock held: the client may be told that this was the last reference.
    ended.release();
}

void FSEventStreamFlushSync(FSEventStreamRef stream) {
    EventStream& target = EventStream::of(stream);
    target.deliver(EventCollector::ofProcess().takeUpToDate(target));
}

FSEventStreamEventId FSEventStreamFlushAsync(FSEventStreamRef stream) {
    EventCollector::ofProcess().flushSoon(EventStream::of(stream));
    return FSEventsGetCurrentEventId();
}

FSEventStreamEventId FSEventStreamGetLatestEventId(ConstFSEventStreamRef stream) {
    return EventStream::of(stream).latestEventId();
}

FSEventStreamEventId FSEventsGetCurrentEventId(void) {
    return EventCollector::ofProcess().latestEventId();
}

CFArrayRef FSEventStreamCopyPathsBeingWatched(ConstFSEventStreamRef stream) {
    const std::vector<std::string>& roots = EventStream::of(stream).roots();
    std::vector<const void*> paths;
    for (const std::string& root : roots)
        paths.push_back(CFStringCreateWithCString(
            kCFAllocatorDefault, root.empty() ? "/" : root.c_str(), kCFStringEncodingUTF8));
    CFArrayRef array = CFArrayCreate(kCFAllocatorDefault, paths.data(),
                                     static_cast<CFIndex>(paths.size()), &kCFTypeArrayCallBacks);
    for (const void* path : paths)
        CFRelease(path);
    return array;
}

void FSEventStreamShow(ConstFSEventStreamRef stream) {
    const auto lock = lockCollector();
    EventStream::of(stream).show();
}
