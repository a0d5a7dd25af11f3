// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <chrono>

namespace tav::ula {

/// A caller's limit as one that can be added to a clock: not less than nothing, and at most a year,
/// which is as good as for ever.
inline std::chrono::milliseconds boundedLimit(std::chrono::milliseconds limit) {
    constexpr std::chrono::milliseconds kLongest = std::chrono::hours(24 * 365);
    return std::clamp(limit, std::chrono::milliseconds(0), kLongest);
}

}  // namespace tav::ula
