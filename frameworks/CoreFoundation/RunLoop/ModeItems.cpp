// SPDX-License-Identifier: MIT
#include "ModeItems.h"

#include "Clock.h"

#include <algorithm>

namespace cf {

bool ModeItems::insert(Source& source) {
    if (contains(source))
        return false;
    auto place =
        std::upper_bound(_sources.begin(), _sources.end(), source.order(),
                         [](CFIndex order, const auto& other) { return order < other->order(); });
    _sources.emplace(place, source);
    return true;
}

bool ModeItems::insert(Timer& timer) {
    if (!_timers.try_emplace(&timer, Entry{Retained(timer), neverNs}).second)
        return false;
    if (!timer.isFiring())
        schedule(timer);
    return true;
}

bool ModeItems::insert(DescriptorItem& item) {
    if (contains(item) || !_port.add(item.descriptor(), item.events(), item.id()))
        return false;
    _descriptors.emplace(item.id(), item);
    return true;
}

bool ModeItems::erase(Source& source) {
    return std::erase_if(_sources, [&](const auto& held) { return held.get() == &source; }) > 0;
}

bool ModeItems::erase(Timer& timer) {
    park(timer);
    return _timers.erase(&timer) > 0;
}

bool ModeItems::erase(DescriptorItem& item) {
    if (_descriptors.erase(item.id()) == 0)
        return false;
    _port.remove(item.descriptor());
    return true;
}

bool ModeItems::contains(const Source& source) const {
    return std::any_of(_sources.begin(), _sources.end(),
                       [&](const auto& held) { return held.get() == &source; });
}

bool ModeItems::hasSignalledSource() const {
    return std::any_of(_sources.begin(), _sources.end(),
                       [](const auto& source) { return source->isSignalled(); });
}

void ModeItems::appendSignalled(std::vector<Retained<Source>>& signalled) const {
    for (const auto& source : _sources) {
        if (source->isSignalled())
            signalled.push_back(source);
    }
}

void ModeItems::appendDue(std::vector<Retained<Timer>>& due, std::int64_t nowNs) const {
    for (const auto& [deadlineNs, timer] : _schedule) {
        if (deadlineNs > nowNs)
            return;
        due.emplace_back(*timer);
    }
}

void ModeItems::park(Timer& timer) {
    auto found = _timers.find(&timer);
    if (found == _timers.end())
        return;
    _schedule.erase({found->second.deadlineNs, &timer});
    found->second.deadlineNs = neverNs;
}

void ModeItems::schedule(Timer& timer) {
    auto found = _timers.find(&timer);
    if (found == _timers.end())
        return;
    _schedule.erase({found->second.deadlineNs, &timer});
    found->second.deadlineNs = timer.deadlineNs();
    _schedule.emplace(timer.deadlineNs(), &timer);
}

Retained<DescriptorItem> ModeItems::descriptor(std::uint64_t id) const {
    auto found = _descriptors.find(id);
    return found == _descriptors.end() ? Retained<DescriptorItem>() : found->second;
}

void ModeItems::addLimit(std::int64_t limitNs) {
    _limits.insert(limitNs);
}

void ModeItems::removeLimit(std::int64_t limitNs) {
    auto found = _limits.find(limitNs);
    if (found != _limits.end())
        _limits.erase(found);
}

void ModeItems::arm(std::int64_t nowNs) {
    // A run that is past its limit but has another one on top of it cannot end yet; its limit would
    // keep the port ready all that time.
    _limits.erase(_limits.begin(), _limits.upper_bound(nowNs));
    std::int64_t nextNs = _schedule.empty() ? neverNs : _schedule.begin()->first;
    if (!_limits.empty())
        nextNs = std::min(nextNs, *_limits.begin());
    _port.armTimer(nextNs);
}

void ModeItems::appendSources(std::vector<Retained<Source>>& sources) const {
    sources.insert(sources.end(), _sources.begin(), _sources.end());
}

void ModeItems::appendTimers(std::vector<Retained<Timer>>& timers) const {
    for (const auto& [timer, entry] : _timers)
        timers.push_back(entry.timer);
}

void ModeItems::appendDescriptors(std::vector<Retained<DescriptorItem>>& descriptors) const {
    for (const auto& [id, item] : _descriptors)
        descriptors.push_back(item);
}

void ModeItems::eraseAllOf(const ModeItems& others) {
    for (const auto& source : others._sources)
        erase(*source);
    for (const auto& [timer, entry] : others._timers)
        erase(*entry.timer);
    for (const auto& [id, item] : others._descriptors)
        erase(*item);
}

}  // namespace cf
