// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/Export.h"

#include <cstdint>

namespace tav::time {

/// A point in time on a clock that only runs forward, whatever is done to the wall clock.
class TAV_FOUNDATION_API Timestamp {
public:
    /// The clock's origin.
    Timestamp() = default;
    static Timestamp now();
    /// Units: `operator-` counts these.
    static std::int64_t unitsPerSecond() { return 1'000'000'000; }

    std::int64_t operator-(const Timestamp& earlier) const { return _units - earlier._units; }

private:
    std::int64_t _units = 0;
};

}  // namespace tav::time
