// SPDX-License-Identifier: MIT
#include "KernelWatches.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

namespace fsevents {

namespace {

// Reading and closing change nothing in a tree and are left out.
constexpr uint32_t kFolderChanges = IN_CREATE | IN_DELETE | IN_MODIFY | IN_ATTRIB | IN_MOVE;
constexpr std::size_t kRoomPerRead = 64 * 1024;
// Beyond this the kernel's own limit may do its work: it says so, and everything is read anew.
constexpr std::size_t kMostWaiting = 256 * 1024 * 1024;

int millisecondsUntil(std::chrono::steady_clock::time_point deadline) {
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    return std::max(0, static_cast<int>(left.count()));
}

}  // namespace

std::unique_ptr<KernelWatches> KernelWatches::open() {
    const int descriptor = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (descriptor < 0)
        return nullptr;
    return std::unique_ptr<KernelWatches>(new KernelWatches(descriptor));
}

KernelWatches::~KernelWatches() {
    abandon();
}

void KernelWatches::abandon() {
    if (_descriptor >= 0)
        close(_descriptor);
    _descriptor = -1;
}

int KernelWatches::addFolder(int folderDescriptor) {
    char path[32];
    snprintf(path, sizeof path, "/proc/self/fd/%d", folderDescriptor);
    return addPath(path, kFolderChanges | IN_ONLYDIR | IN_EXCL_UNLINK);
}

// What is watched for several reasons is watched for all of them.
int KernelWatches::addPath(const char* path, uint32_t mask) {
    return inotify_add_watch(_descriptor, path, mask | IN_MASK_ADD);
}

void KernelWatches::remove(int watch) {
    inotify_rm_watch(_descriptor, watch);
}

void KernelWatches::collect() {
    _room.resize(kRoomPerRead);
    while (_waiting.size() < kMostWaiting) {
        const ssize_t count = read(_descriptor, _room.data(), _room.size());
        if (count <= 0)
            return;
        _waiting.insert(_waiting.end(), _room.begin(), _room.begin() + count);
    }
}

void KernelWatches::waitAndCollect(int timeoutMs) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    pollfd queue{_descriptor, POLLIN, 0};
    // On threads of the application signals come.
    while (poll(&queue, 1, timeoutMs) < 0 && errno == EINTR)
        timeoutMs = millisecondsUntil(deadline);
    collect();
}

std::vector<KernelEvent> KernelWatches::take(std::vector<char>& bytes) {
    bytes = std::move(_waiting);
    _waiting = {};
    std::vector<KernelEvent> events;
    for (const char* at = bytes.data(); at < bytes.data() + bytes.size();) {
        // The kernel aligns them, and so does the allocation.
        const auto* event = reinterpret_cast<const inotify_event*>(at);
        // The name is filled up with zeros.
        events.push_back({event->wd, event->mask, event->cookie,
                          event->len == 0 ? std::string_view() : std::string_view(event->name)});
        at += sizeof *event + event->len;
    }
    return events;
}

}  // namespace fsevents
