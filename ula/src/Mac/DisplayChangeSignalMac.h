// SPDX-License-Identifier: MIT
#pragma once

#include "ula/NativeTimer.h"
#include "ula/Screen.h"

#include <ApplicationServices/ApplicationServices.h>
#include <chrono>
#include <memory>

namespace tav::ula {

class DisplayChangeSignalMac : public DisplayChangeSignal {
public:
    DisplayChangeSignalMac();
    ~DisplayChangeSignalMac() override;

private:
    using Clock = std::chrono::steady_clock;

    /// What makes two arrangements differ.
    struct Display {
        CGDirectDisplayID number;
        math::GenRect<int> bounds;
        double refreshRate;

        friend bool operator==(const Display&, const Display&) = default;
    };

    static std::vector<Display> currentDisplays();
    static void reconfigured(CGDirectDisplayID display, CGDisplayChangeSummaryFlags flags,
                             void* self);
    void restartTimer();
    void settle();

    std::vector<Display> _displays;
    std::unique_ptr<NativeTimer> _timer;
    Clock::time_point _burstBegin;
};

}  // namespace tav::ula
