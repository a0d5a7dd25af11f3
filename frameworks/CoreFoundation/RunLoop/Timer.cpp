// SPDX-License-Identifier: MIT
#include "Timer.h"

#include "Clock.h"

#include <algorithm>

namespace cf {

namespace {

// An interval above 0 repeats, however small it is.
std::int64_t intervalOf(CFTimeInterval seconds) {
    return seconds > 0 ? std::max<std::int64_t>(nanoseconds(seconds), 1) : 0;
}

}  // namespace

Timer::Timer(CFRunLoopTimerRef object, CFAbsoluteTime fireDate, CFTimeInterval intervalSeconds,
             CFRunLoopTimerCallBack callout, const CFRunLoopTimerContext& context)
    : _object(object),
      _intervalSeconds(intervalSeconds > 0 ? intervalSeconds : 0),
      _intervalNs(intervalOf(intervalSeconds)),
      _callout(callout),
      _context(context) {
    if (_context.retain != nullptr)
        _context.info = const_cast<void*>(_context.retain(_context.info));
    setFireDate(fireDate);
    _moved = false;
}

Timer::~Timer() {
    if (isValid())
        dropInfo();
}

void Timer::dropInfo() {
    if (_infoUsers.fetch_sub(1, std::memory_order_acq_rel) == 1 && _context.release != nullptr)
        _context.release(_context.info);
}

void Timer::didInvalidate() {
    dropInfo();
}

void Timer::setFireDate(CFAbsoluteTime fireDate) {
    _fireDate.store(fireDate, std::memory_order_relaxed);
    _deadlineNs = monotonicNs() + nanoseconds(fireDate - absoluteTimeNow());
    _moved = true;
}

void Timer::advancePast(std::int64_t nowNs) {
    if (!repeats() || nowNs < _deadlineNs)
        return;
    std::int64_t steps = (nowNs - _deadlineNs) / _intervalNs + 1;
    _deadlineNs += steps * _intervalNs;
    _fireDate.store(nextFireDate() + static_cast<double>(steps) * _intervalSeconds,
                    std::memory_order_relaxed);
}

void Timer::beginFiring(std::int64_t nowNs) {
    keepInfo();
    _firing = true;
    _moved = false;
    advancePast(nowNs);
}

bool Timer::endFiring(std::int64_t nowNs) {
    _firing = false;
    if (!_moved)
        advancePast(nowNs);
    return repeats() || _moved;
}

}  // namespace cf
