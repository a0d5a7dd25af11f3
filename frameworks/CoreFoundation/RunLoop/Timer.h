// SPDX-License-Identifier: MIT
#pragma once

#include "Item.h"

#include <CoreFoundation/CFDate.h>
#include <cstdint>

namespace cf {

/// A timer on an absolute schedule. Lives within its CF object.
///
/// Thread: the schedule is guarded by the lock of the loop that the timer is in, or by Membership's
/// while it is in none; nextFireDate() may be called at any time.
class Timer final : public Item {
public:
    Timer(CFRunLoopTimerRef object, CFAbsoluteTime fireDate, CFTimeInterval intervalSeconds,
          CFRunLoopTimerCallBack callout, const CFRunLoopTimerContext& context);
    ~Timer() override;

    void retain() override { CFRetain(_object); }
    void release() override { CFRelease(_object); }
    bool allowsSeveralLoops() const override { return false; }
    void didInvalidate() override;

    const CFRunLoopTimerContext& context() const { return _context; }
    CFTimeInterval intervalSeconds() const { return _intervalSeconds; }
    bool repeats() const { return _intervalNs > 0; }
    CFAbsoluteTime nextFireDate() const { return _fireDate.load(std::memory_order_relaxed); }

    /// Units: nanoseconds on the monotonic clock.
    std::int64_t deadlineNs() const { return _deadlineNs; }
    bool isFiring() const { return _firing; }
    void setFireDate(CFAbsoluteTime fireDate);

    /// Before the call-out: moves on to the next point of the grid that lies after nowNs.
    void beginFiring(std::int64_t nowNs);
    void callOut() { _callout(_object, _context.info); }
    /// After it: skips the points that have passed meanwhile. Returns whether the timer has another
    /// time to fire.
    bool endFiring(std::int64_t nowNs);
    /// To be called after endFiring, with no lock held.
    void didFire() { dropInfo(); }

private:
    void keepInfo() { _infoUsers.fetch_add(1, std::memory_order_relaxed); }
    /// The last user gives the info back to the context: an invalidation during a call-out on
    /// another thread must not take it from under that.
    void dropInfo();
    void advancePast(std::int64_t nowNs);

    CFRunLoopTimerRef _object;
    CFTimeInterval _intervalSeconds;
    std::int64_t _intervalNs;
    CFRunLoopTimerCallBack _callout;
    CFRunLoopTimerContext _context;
    std::atomic<CFAbsoluteTime> _fireDate{0};
    std::int64_t _deadlineNs = 0;
    bool _firing = false;
    /// Whether setFireDate was called during the call-out.
    bool _moved = false;
    /// Being valid counts as one, a call-out in progress as another.
    std::atomic<int> _infoUsers{1};
};

}  // namespace cf
