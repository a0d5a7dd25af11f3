// SPDX-License-Identifier: MIT
#pragma once

#include "ula/NativeTimer.h"
#include "ula/foundation/time/Timestamp.h"
#include "ula/foundation/util/ScopedPtr.h"

#include <cstdint>

namespace tav::ula {

/// Calls a function once it has been quiet for a while: when a given time has passed since it was
/// made, since `restart` or since its last call. It looks at a fixed rate whether that is so, and
/// goes on doing so after a call.
/// Thread: only the one that made it; calls come while that thread's run loop runs.
class ULA_API InterruptibleTimer {
public:
    /// Looks every `pollInterval`. Calls when more than `timeout` has passed, or, with a
    /// `minimumTimeout` other than 0, already when at least that has passed.
    /// Units: milliseconds.
    InterruptibleTimer(unsigned int pollInterval, const util::Function0<void>& function,
                       unsigned int timeout, unsigned int minimumTimeout);
    InterruptibleTimer(const InterruptibleTimer&) = delete;
    InterruptibleTimer& operator=(const InterruptibleTimer&) = delete;
    /// Also from within the function.
    virtual ~InterruptibleTimer();

    /// Counts the time from now.
    void restart();
    /// Looks now, and calls the function if its time has come.
    void fire();

private:
    bool isTimeToCall() const;

    util::ScopedPtr<NativeTimer> _nativeTimer;
    std::uint32_t _timeout;
    std::uint32_t _minimumTimeout;
    time::Timestamp _lastStart;
    util::Function0<void> _function;
};

}  // namespace tav::ula
