// SPDX-License-Identifier: MIT
#pragma once

#include "Retained.h"

#include <CoreFoundation/CFRunLoop.h>
#include <atomic>
#include <vector>

namespace cf {

class RunLoop;

/// What run loops serve: a source, a timer or a watched descriptor. Counts its own references; run
/// loops hold one each while the item is in them.
class Item {
public:
    Item();
    Item(const Item&) = delete;
    Item& operator=(const Item&) = delete;
    virtual ~Item();

    virtual void retain() = 0;
    virtual void release() = 0;

    /// False from the invalidation on, for ever.
    bool isValid() const { return _valid.load(std::memory_order_acquire); }

    /// Whether the item may enter another loop than those it is in.
    virtual bool allowsSeveralLoops() const { return true; }

    /// Told after the fact, with no lock held, for every single mode.
    virtual void didEnter(CFRunLoopRef, CFStringRef) {}
    virtual void didLeave(CFRunLoopRef, CFStringRef) {}
    /// Told once, after the item has left all loops.
    virtual void didInvalidate() {}

private:
    friend class Membership;

    std::atomic<bool> _valid{true};
    /// Guarded by Membership's lock.
    std::vector<Retained<RunLoop>> _loops;
};

}  // namespace cf
