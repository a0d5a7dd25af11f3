// SPDX-License-Identifier: MIT
#include "MovePairs.h"

#include <algorithm>
#include <sys/inotify.h>
#include <unordered_map>

namespace fsevents {

namespace {

// Between the two ends there is no more than what other threads do in the same moment.
constexpr std::size_t kFarthestEnd = 64;

}  // namespace

MovePairs::MovePairs(const std::vector<KernelEvent>& events) : _partners(events.size(), kNone) {
    std::unordered_map<uint32_t, std::size_t> begun;
    for (std::size_t index = 0; index < events.size(); ++index) {
        const KernelEvent& event = events[index];
        if ((event.mask & IN_MOVED_FROM) != 0)
            begun[event.cookie] = index;
        if ((event.mask & IN_MOVED_TO) == 0)
            continue;
        const auto begin = begun.find(event.cookie);
        if (begin == begun.end())
            continue;
        _partners[begin->second] = index;
        _partners[index] = begin->second;
        begun.erase(begin);
    }
}

bool MovePairs::mayLackEnd(const std::vector<KernelEvent>& events) {
    const MovePairs pairs(events);
    const std::size_t first = events.size() - std::min(events.size(), kFarthestEnd);
    for (std::size_t index = first; index < events.size(); ++index)
        if ((events[index].mask & IN_MOVED_FROM) != 0 && pairs.partnerOf(index) == kNone)
            return true;
    return false;
}

}  // namespace fsevents
