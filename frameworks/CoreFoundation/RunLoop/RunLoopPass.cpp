// SPDX-License-Identifier: MIT
// One pass of a run loop over what is ready: sources, then timers, then descriptors.
//
// No lock is held in call-backs, and they may do anything, the items that are still to be called
// included. So each item is looked up again right before its turn.
#include "Clock.h"
#include "Membership.h"
#include "RunLoop.h"

#include <algorithm>

namespace cf {

/// Counts the pass, and leaves the ports ready for the next one, however this one ends.
class RunLoop::PassScope {
public:
    explicit PassScope(RunLoop& loop) : _loop(loop) { ++_loop._passes; }
    ~PassScope() {
        --_loop._passes;
        {
            std::lock_guard guard(_loop._mutex);
            _loop.armPorts();
        }
        // Edges have been taken for what an exception left undone.
        if (!_completed)
            _loop.wake();
    }
    void completed() { _completed = true; }
    PassScope(const PassScope&) = delete;
    PassScope& operator=(const PassScope&) = delete;

private:
    RunLoop& _loop;
    bool _completed = false;
};

/// Keeps a timer out of the schedule during its call-out.
class RunLoop::FireScope {
public:
    FireScope(RunLoop& loop, Timer& timer) : _loop(loop), _timer(timer) {}
    ~FireScope() {
        bool firesAgain = false;
        {
            std::lock_guard guard(_loop._mutex);
            firesAgain = _timer.endFiring(monotonicNs());
            if (firesAgain)
                _loop._modes.forEach([&](ModeItems& items) { items.schedule(_timer); });
        }
        _timer.didFire();
        if (!firesAgain)
            Membership::invalidate(_timer);
    }
    FireScope(const FireScope&) = delete;
    FireScope& operator=(const FireScope&) = delete;

private:
    RunLoop& _loop;
    Timer& _timer;
};

bool RunLoop::serve(CFStringRef mode, bool oneSourceOnly) {
    _waiting.store(false, std::memory_order_relaxed);
    itemsChanged();
    PassScope scope(*this);
    Port::Ready room[16];
    auto ready = takeReady(mode, room);
    _wakePort.served();
    bool handled = performSources(mode, oneSourceOnly);
    fireTimers(mode);
    // Descriptors that are left for now are still ready in the next pass.
    if (!(handled && oneSourceOnly) && callDescriptors(mode, ready))
        handled = true;
    scope.completed();
    return handled;
}

std::span<Port::Ready> RunLoop::takeReady(CFStringRef mode, std::span<Port::Ready> room) {
    std::size_t count = 0;
    for (ModeItems* items : served(mode)) {
        if (items == nullptr)
            continue;
        bool timerFired = false;
        count += items->port().poll(room.subspan(count), timerFired).size();
        if (!timerFired)
            continue;
        std::lock_guard guard(_mutex);
        items->port().timerFired();
    }
    return room.first(count);
}

bool RunLoop::performSources(CFStringRef mode, bool oneSourceOnly) {
    std::vector<Retained<Source>> signalled;
    {
        std::lock_guard guard(_mutex);
        for (const ModeItems* items : _modes.present(mode)) {
            if (items != nullptr)
                items->appendSignalled(signalled);
        }
    }
    std::stable_sort(signalled.begin(), signalled.end(),
                     [](const auto& a, const auto& b) { return a->order() < b->order(); });
    bool handled = false;
    for (auto& source : signalled) {
        if (!contains(*source, mode) || !source->takeSignal())
            continue;
        source->perform();
        handled = true;
        if (oneSourceOnly)
            break;
    }
    return handled;
}

void RunLoop::fireTimers(CFStringRef mode) {
    std::int64_t nowNs = monotonicNs();
    std::vector<Retained<Timer>> due;
    {
        std::lock_guard guard(_mutex);
        for (const ModeItems* items : _modes.present(mode)) {
            if (items != nullptr)
                items->appendDue(due, nowNs);
        }
        std::stable_sort(due.begin(), due.end(), [](const auto& a, const auto& b) {
            return a->deadlineNs() < b->deadlineNs();
        });
    }
    for (auto& timer : due)
        fire(*timer, mode, nowNs);
}

void RunLoop::fire(Timer& timer, CFStringRef mode, std::int64_t nowNs) {
    {
        std::lock_guard guard(_mutex);
        if (!_modes.contains(timer, mode) || timer.isFiring() || timer.deadlineNs() > nowNs)
            return;
        _modes.forEach([&](ModeItems& items) { items.park(timer); });
        timer.beginFiring(nowNs);
    }
    FireScope scope(*this, timer);
    timer.callOut();
}

bool RunLoop::callDescriptors(CFStringRef mode, std::span<const Port::Ready> ready) {
    bool handled = false;
    for (const Port::Ready& each : ready) {
        Retained<DescriptorItem> item;
        {
            std::lock_guard guard(_mutex);
            for (const ModeItems* items : _modes.present(mode)) {
                if (items != nullptr && item.get() == nullptr)
                    item = items->descriptor(each.id);
            }
        }
        if (item.get() == nullptr)
            continue;
        item->call(each.events);
        handled = true;
    }
    return handled;
}

void RunLoop::armPorts() {
    std::int64_t nowNs = monotonicNs();
    _modes.forEach([nowNs](ModeItems& items) { items.arm(nowNs); });
}

}  // namespace cf
