// SPDX-License-Identifier: MIT
#include "ula/src/Mac/DisplayChangeSignalMac.h"

#include "ula/ScopedARPool.h"
#include "ula/src/Mac/ScreenNumber.h"

namespace tav::ula {

namespace {

constexpr unsigned int kQuietMs = 100;
/// So that displays that never come to rest are told of all the same.
constexpr std::chrono::milliseconds kLongestBurst{900};

}  // namespace

DisplayChangeSignal* DisplayChangeSignal::create() {
    return new DisplayChangeSignalMac;
}

DisplayChangeSignalMac::DisplayChangeSignalMac() {
    CGDisplayRegisterReconfigurationCallback(reconfigured, this);
    _displays = currentDisplays();
}

DisplayChangeSignalMac::~DisplayChangeSignalMac() {
    CGDisplayRemoveReconfigurationCallback(reconfigured, this);
}

std::vector<DisplayChangeSignalMac::Display> DisplayChangeSignalMac::currentDisplays() {
    const ScopedARPool pool;
    std::vector<Display> displays;
    // Not by `displayID`: what it looks up may have gone by then.
    for (const Screen& screen : Screen::getAllScreens())
        displays.push_back({displayNumberOf(static_cast<NSScreen*>(screen.handle)), screen.bounds,
                            screen.details().refreshRate});
    return displays;
}

void DisplayChangeSignalMac::reconfigured(CGDirectDisplayID, CGDisplayChangeSummaryFlags,
                                          void* self) {
    auto* const that = static_cast<DisplayChangeSignalMac*>(self);
    that->restartTimer();
    // A slot may delete this object: nothing comes after it.
    that->displaysChanged();
}

void DisplayChangeSignalMac::restartTimer() {
    const Clock::time_point now = Clock::now();
    if (!_timer)
        _burstBegin = now;
    else if (now - _burstBegin > kLongestBurst)
        return;
    _timer.reset(NativeTimer::createTimer(kQuietMs, [this] { settle(); }));
}

void DisplayChangeSignalMac::settle() {
    // Once only; the timer may be deleted within its own call.
    _timer.reset();
    std::vector<Display> displays = currentDisplays();
    if (displays == _displays)
        return;
    _displays = std::move(displays);
    displaysSettled();
}

}  // namespace tav::ula
