// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace cf {

/// A point on the monotonic clock that never comes.
inline constexpr std::int64_t neverNs = INT64_MAX;

/// Units: nanoseconds on the monotonic clock.
std::int64_t monotonicNs();

/// Units: seconds since 2001-01-01 00:00:00 UTC.
double absoluteTimeNow();

/// Units: seconds to nanoseconds. What lies beyond a century counts as a century, so that sums
/// with a clock reading cannot overflow; not-a-number counts as 0.
std::int64_t nanoseconds(double seconds);

}  // namespace cf
