// SPDX-License-Identifier: MIT
#pragma once

#include "CoreServices/FSEvents.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace fsevents {

struct Event {
    std::string path;
    FSEventStreamEventFlags flags = 0;
    FSEventStreamEventId id = 0;
};

// What a stream is going to tell, in the order of the changes.
class PendingEvents {
public:
    bool empty() const { return _events.empty(); }
    std::size_t size() const { return _events.size(); }

    // Once for each path and flags, in the place of the first time and with the last number.
    void addOnce(std::string&& path, FSEventStreamEventFlags flags, FSEventStreamEventId id);
    // Each time. What repeats the last one is left out.
    void append(std::string&& path, FSEventStreamEventFlags flags, FSEventStreamEventId id);

    std::vector<Event> take();
    void clear() { take(); }

private:
    std::vector<Event> _events;
    // By path; one entry for each set of flags.
    std::unordered_multimap<std::string, std::size_t> _once;
};

}  // namespace fsevents
