// SPDX-License-Identifier: MIT
#include "PendingEvents.h"

#include <utility>

namespace fsevents {

namespace {

// Only what says nothing of the order may be left out: a file that is made, removed and made again
// is told three times.
constexpr FSEventStreamEventFlags kRepeatable =
    kFSEventStreamEventFlagItemModified | kFSEventStreamEventFlagItemInodeMetaMod |
    kFSEventStreamEventFlagItemIsFile | kFSEventStreamEventFlagItemIsDir |
    kFSEventStreamEventFlagMustScanSubDirs;

}  // namespace

void PendingEvents::addOnce(std::string&& path, FSEventStreamEventFlags flags,
                            FSEventStreamEventId id) {
    const auto [begin, end] = _once.equal_range(path);
    for (auto known = begin; known != end; ++known) {
        Event& event = _events[known->second];
        if (event.flags != flags)
            continue;
        event.id = id;
        return;
    }
    _once.emplace(path, _events.size());
    _events.push_back({std::move(path), flags, id});
}

void PendingEvents::append(std::string&& path, FSEventStreamEventFlags flags,
                           FSEventStreamEventId id) {
    if (!_events.empty()) {
        Event& last = _events.back();
        const bool isRepeated = last.flags == flags && (flags & ~kRepeatable) == 0;
        // Trees that overlap tell of the same change, which has one number.
        if (last.path == path && (isRepeated || last.id == id)) {
            last.id = id;
            return;
        }
    }
    _events.push_back({std::move(path), flags, id});
}

std::vector<Event> PendingEvents::take() {
    _once.clear();
    return std::exchange(_events, {});
}

}  // namespace fsevents
