// SPDX-License-Identifier: MIT
#include "Clock.h"

#include <CoreFoundation/CFDate.h>
#include <algorithm>
#include <cmath>
#include <ctime>

namespace cf {

namespace {

timespec read(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return now;
}

}  // namespace

std::int64_t monotonicNs() {
    timespec now = read(CLOCK_MONOTONIC);
    return now.tv_sec * 1'000'000'000LL + now.tv_nsec;
}

double absoluteTimeNow() {
    timespec now = read(CLOCK_REALTIME);
    return static_cast<double>(now.tv_sec) - kCFAbsoluteTimeIntervalSince1970 +
           static_cast<double>(now.tv_nsec) * 1e-9;
}

std::int64_t nanoseconds(double seconds) {
    constexpr double century = 100.0 * 365.25 * 86400.0;
    if (std::isnan(seconds))
        return 0;
    return std::llround(std::clamp(seconds, -century, century) * 1e9);
}

}  // namespace cf
