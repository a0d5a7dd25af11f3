// SPDX-License-Identifier: MIT
#pragma once

#include "RunLoop.h"

#include <algorithm>
#include <mutex>
#include <vector>

namespace cf {

/// Which items are in which run loops. Either side knows the other: loops hold their items, and
/// items know their loops to leave them when they are invalidated.
///
/// One lock for the process serialises the changes; the locks of loops are taken within it, one at
/// a time. Items and loops are let go of, and told, after it.
class Membership {
public:
    template <class T>
    static void add(RunLoop& loop, T& item, CFStringRef mode);
    template <class T>
    static void remove(RunLoop& loop, T& item, CFStringRef mode);
    template <class T>
    static void removeEverywhere(RunLoop& loop, T& item);
    template <class T>
    static void invalidate(T& item);
    static void setFireDate(Timer& timer, CFAbsoluteTime fireDate);

    static std::mutex& lock();

private:
    static bool isIn(const Item& item, const RunLoop& loop);
    static bool mayEnter(const Item& item, const RunLoop& loop);
    /// Returns the item's reference to the loop, for the caller to drop after the lock.
    static Retained<RunLoop> forget(Item& item, const RunLoop& loop);
};

template <class T>
void Membership::add(RunLoop& loop, T& item, CFStringRef mode) {
    ModeTable::Modes entered;
    {
        std::lock_guard guard(lock());
        if (!item.isValid() || !mayEnter(item, loop))
            return;
        entered = loop.insert(item, mode);
        if (!entered.empty() && !isIn(item, loop))
            item._loops.emplace_back(loop);
    }
    loop.itemsChanged();
    for (CFStringRef each : entered)
        item.didEnter(loop.object(), each);
}

template <class T>
void Membership::remove(RunLoop& loop, T& item, CFStringRef mode) {
    // The loops may have held the only references.
    Retained<T> kept(item);
    Retained<RunLoop> forgotten;
    ModeTable::Modes left;
    {
        std::lock_guard guard(lock());
        left = loop.erase(item, mode);
        if (!loop.containsAnywhere(item))
            forgotten = forget(item, loop);
    }
    loop.itemsChanged();
    for (CFStringRef each : left)
        item.didLeave(loop.object(), each);
}

template <class T>
void Membership::removeEverywhere(RunLoop& loop, T& item) {
    Retained<T> kept(item);
    Retained<RunLoop> forgotten;
    ModeTable::Modes left;
    {
        std::lock_guard guard(lock());
        left = loop.eraseEverywhere(item);
        forgotten = forget(item, loop);
    }
    for (CFStringRef each : left)
        item.didLeave(loop.object(), each);
}

template <class T>
void Membership::invalidate(T& item) {
    Retained<T> kept(item);
    std::vector<Retained<RunLoop>> loops;
    {
        std::lock_guard guard(lock());
        if (!item._valid.exchange(false, std::memory_order_acq_rel))
            return;
        loops = item._loops;
    }
    for (auto& loop : loops)
        removeEverywhere(*loop, item);
    item.didInvalidate();
}

}  // namespace cf
