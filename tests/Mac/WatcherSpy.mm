// SPDX-License-Identifier: MIT
#include "WatcherSpy.h"

#import "ula/ObjCHelper.h"

#include <cerrno>
#include <cstdio>
#include <dlfcn.h>
#include <sys/fcntl.h>

using tav::test::WatcherSpy;

namespace {

int streamPlace = 0;
FSEventStreamRef const stream = reinterpret_cast<FSEventStreamRef>(&streamPlace);

WatcherSpy& spy() {
    return WatcherSpy::instance();
}

std::string hexadecimal(unsigned long long number) {
    char text[32];
    std::snprintf(text, sizeof text, "0x%llx", number);
    return text;
}

std::string textOf(CFArrayRef paths) {
    std::string text;
    for (CFIndex i = 0; i < CFArrayGetCount(paths); ++i)
        text += " " + [static_cast<NSString*>(const_cast<void*>(CFArrayGetValueAtIndex(paths, i)))
                          toStdString];
    return text;
}

int refuse(int error) {
    errno = error;
    return -1;
}

int makeChange(const struct kevent& change) {
    spy().add("change " + std::to_string(change.filter) + " " + hexadecimal(change.flags) + " " +
              hexadecimal(change.fflags));
    return change.flags == spy().refusedFlags ? refuse(ENOMEM) : 0;
}

}  // namespace

namespace tav::test {

WatcherSpy& WatcherSpy::instance() {
    static WatcherSpy spy;
    return spy;
}

void WatcherSpy::add(const std::string& call) {
    const std::lock_guard lock(mutex);
    calls.push_back(call);
}

std::vector<std::string> WatcherSpy::take() {
    const std::lock_guard lock(mutex);
    return std::exchange(calls, {});
}

void WatcherSpy::tell(
    const std::vector<std::pair<std::string, FSEventStreamEventFlags>>& told) const {
    std::vector<const char*> paths;
    std::vector<FSEventStreamEventFlags> flags;
    for (const auto& [path, flag] : told) {
        paths.push_back(path.c_str());
        flags.push_back(flag);
    }
    const std::vector<FSEventStreamEventId> identifiers(told.size());
    callBack(stream, info, told.size(), paths.data(), flags.data(), identifiers.data());
}

}  // namespace tav::test

// Found before the frameworks' own.

int kqueue() {
    return spy().isQueueRefused ? refuse(EMFILE)
                                : reinterpret_cast<int (*)()>(dlsym(RTLD_NEXT, "ula_kqueue"))();
}

int kevent(int queue, const struct kevent* changes, int changeCount, struct kevent* events,
           int eventCount, const timespec* timeout) {
    if (changeCount == 1 && events == nullptr && eventCount == 0 && timeout == nullptr)
        return queue < 0 ? refuse(EBADF) : makeChange(*changes);
    const std::lock_guard lock(spy().mutex);
    spy().round = (changes == nullptr ? "null " : "changes ") + std::to_string(changeCount) + " " +
                  std::to_string(eventCount) + " " +
                  (timeout != nullptr
                       ? std::to_string(timeout->tv_sec) + "." + std::to_string(timeout->tv_nsec)
                       : "for ever");
    if (spy().events.empty())
        return 0;
    *events = spy().events.front();
    spy().events.erase(spy().events.begin());
    return 1;
}

int open(const char* path, EventOnlyFlag flag) {
    spy().add(std::string("open ") + path + " " + hexadecimal(static_cast<unsigned>(flag)));
    return spy().isOpenRefused ? refuse(EACCES) : open(path, O_RDONLY | O_CLOEXEC);
}

FSEventStreamRef FSEventStreamCreate(CFAllocatorRef, FSEventStreamCallback callBack,
                                     FSEventStreamContext* context, CFArrayRef paths,
                                     FSEventStreamEventId since, CFTimeInterval latency,
                                     FSEventStreamCreateFlags flags) {
    const bool isPlain = context->version == 0 && context->retain == nullptr &&
                         context->release == nullptr && context->copyDescription == nullptr;
    char numbers[64];
    std::snprintf(numbers, sizeof numbers, " latency %g flags %u%s", latency, flags,
                  isPlain ? "" : " context");
    spy().add("create since " + hexadecimal(since) + numbers + textOf(paths));
    spy().callBack = callBack;
    spy().info = context->info;
    return spy().isStreamRefused ? nullptr : stream;
}

void FSEventStreamScheduleWithRunLoop(FSEventStreamRef, CFRunLoopRef runLoop, CFStringRef mode) {
    spy().add(std::string("schedule ") + (runLoop == CFRunLoopGetCurrent() ? "here" : "elsewhere") +
              (mode == kCFRunLoopDefaultMode ? " default" : " another mode"));
}

Boolean FSEventStreamStart(FSEventStreamRef) {
    spy().add("start");
    return true;
}

void FSEventStreamStop(FSEventStreamRef) {
    spy().add("stop");
}

void FSEventStreamInvalidate(FSEventStreamRef) {
    spy().add("invalidate");
}

void FSEventStreamRelease(FSEventStreamRef) {
    spy().add("release");
}

void FSEventStreamFlushSync(FSEventStreamRef) {
    spy().add("flush");
    if (!spy().flushed.empty())
        spy().tell(std::exchange(spy().flushed, {}));
}

void FSEventStreamShow(ConstFSEventStreamRef) {
    spy().add("show");
}
