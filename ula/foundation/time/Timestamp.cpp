// SPDX-License-Identifier: MIT
#include "ula/foundation/time/Timestamp.h"

#include <time.h>

namespace tav::time {

Timestamp Timestamp::now() {
    timespec reading{};
    clock_gettime(CLOCK_MONOTONIC, &reading);
    Timestamp timestamp;
    timestamp._units = reading.tv_sec * unitsPerSecond() + reading.tv_nsec;
    return timestamp;
}

}  // namespace tav::time
