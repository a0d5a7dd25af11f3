// SPDX-License-Identifier: MIT
#include "StreamRecorder.h"

#include "tests/support/Patience.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace tav::test {

namespace {

CFArrayRef newArray(const std::vector<std::string>& texts) {
    CFMutableArrayRef array = CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks);
    for (const std::string& text : texts) {
        CFStringRef string =
            CFStringCreateWithCString(kCFAllocatorDefault, text.c_str(), kCFStringEncodingUTF8);
        CFArrayAppendValue(array, string);
        CFRelease(string);
    }
    return array;
}

}  // namespace

StreamRecorder::StreamRecorder(const std::vector<std::string>& roots,
                               FSEventStreamCreateFlags flags, double latencySeconds,
                               FSEventStreamEventId since) {
    FSEventStreamContext context{};
    context.info = this;
    CFArrayRef paths = newArray(roots);
    _stream = FSEventStreamCreate(kCFAllocatorDefault, receive, &context, paths, since,
                                  latencySeconds, flags);
    CFRelease(paths);
    FSEventStreamScheduleWithRunLoop(_stream, CFRunLoopGetCurrent(), kCFRunLoopDefaultMode);
    _hasStarted = FSEventStreamStart(_stream);
}

StreamRecorder::~StreamRecorder() {
    stop();
}

void StreamRecorder::stop() {
    if (_stream == nullptr)
        return;
    FSEventStreamStop(_stream);
    FSEventStreamInvalidate(_stream);
    FSEventStreamRelease(_stream);
    _stream = nullptr;
}

void StreamRecorder::receive(ConstFSEventStreamRef, void* info, size_t count, void* paths,
                             const FSEventStreamEventFlags* flags,
                             const FSEventStreamEventId* ids) {
    auto& recorder = *static_cast<StreamRecorder*>(info);
    ++recorder._calls;
    for (size_t index = 0; index < count; ++index)
        recorder._told.push_back(
            {static_cast<const char* const*>(paths)[index], flags[index], ids[index]});
    if (recorder.onCall)
        recorder.onCall();
}

bool StreamRecorder::waitUntil(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + tav::test::kPatience;
    while (!condition()) {
        const std::chrono::duration<double> left = end - std::chrono::steady_clock::now();
        if (left.count() <= 0)
            return false;
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, left.count(), true);
    }
    return true;
}

bool StreamRecorder::hasTold(const std::string& path, FSEventStreamEventFlags flags) const {
    return std::any_of(_told.begin(), _told.end(),
                       [&](const Told& told) { return told.path == path && told.flags == flags; });
}

bool StreamRecorder::waitFor(const std::string& path, FSEventStreamEventFlags flags) {
    return waitUntil([&] { return hasTold(path, flags); });
}

std::string StreamRecorder::text() const {
    std::string text;
    for (const Told& told : _told) {
        char flags[16];
        snprintf(flags, sizeof flags, "%x ", told.flags & 0xffffu);
        text += (text.empty() ? "" : ", ") + std::string(flags) + told.path;
    }
    return text;
}

}  // namespace tav::test
