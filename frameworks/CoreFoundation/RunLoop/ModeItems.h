// SPDX-License-Identifier: MIT
#pragma once

#include "DescriptorItem.h"
#include "Port.h"
#include "Source.h"
#include "Timer.h"

#include <cstdint>
#include <map>
#include <set>
#include <vector>

namespace cf {

/// The items that were added to one mode, or to the common modes together, and the port that waits
/// for them.
///
/// Thread: guarded by the run loop's lock.
class ModeItems {
public:
    explicit ModeItems(const WakePort* wakePort) : _port(wakePort) {}

    Port& port() { return _port; }

    /// False when the item is there already; for a descriptor also when it cannot be watched.
    bool insert(Source& source);
    bool insert(Timer& timer);
    bool insert(DescriptorItem& item);
    /// False when the item is not there.
    bool erase(Source& source);
    bool erase(Timer& timer);
    bool erase(DescriptorItem& item);
    bool contains(const Source& source) const;
    bool contains(const Timer& timer) const { return _timers.contains(&timer); }
    bool contains(const DescriptorItem& item) const { return _descriptors.contains(item.id()); }

    bool empty() const { return _sources.empty() && _timers.empty() && _descriptors.empty(); }

    bool hasSignalledSource() const;
    void appendSignalled(std::vector<Retained<Source>>& signalled) const;

    /// Timers whose time has come, the earliest first.
    void appendDue(std::vector<Retained<Timer>>& due, std::int64_t nowNs) const;
    /// Takes the timer out of the schedule for the time of its call-out.
    void park(Timer& timer);
    /// Puts the timer into the schedule at its present deadline. Does nothing for a foreign one.
    void schedule(Timer& timer);

    /// The descriptor with that id, or an empty reference.
    Retained<DescriptorItem> descriptor(std::uint64_t id) const;

    /// A time at which a run of the loop ends; the port gets ready then, once.
    void addLimit(std::int64_t limitNs);
    void removeLimit(std::int64_t limitNs);

    /// Sets the port's timer to the earliest of the timers and of the limits still to come.
    void arm(std::int64_t nowNs);

    void appendSources(std::vector<Retained<Source>>& sources) const;
    void appendTimers(std::vector<Retained<Timer>>& timers) const;
    void appendDescriptors(std::vector<Retained<DescriptorItem>>& descriptors) const;
    void eraseAllOf(const ModeItems& others);

private:
    struct Entry {
        Retained<Timer> timer;
        /// What the timer is scheduled under; neverNs while it is parked.
        std::int64_t deadlineNs;
    };

    /// In ascending order, then in the order of their insertion.
    std::vector<Retained<Source>> _sources;
    std::map<const Timer*, Entry> _timers;
    std::set<std::pair<std::int64_t, Timer*>> _schedule;
    std::map<std::uint64_t, Retained<DescriptorItem>> _descriptors;
    std::multiset<std::int64_t> _limits;
    Port _port;
};

}  // namespace cf
