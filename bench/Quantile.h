// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <chrono>
#include <vector>

namespace tav::bench {

using Clock = std::chrono::steady_clock;

inline double nanoseconds(Clock::duration duration) {
    return std::chrono::duration<double, std::nano>(duration).count();
}

/// The value below which the given part of the values lies; reorders them. There must be one.
inline double quantile(std::vector<double>& values, double part) {
    const auto index = static_cast<std::ptrdiff_t>(part * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), values.begin() + index, values.end());
    return values[static_cast<std::size_t>(index)];
}

}  // namespace tav::bench
