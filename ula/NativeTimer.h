// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"
#include "ula/foundation/util/Function0.h"

namespace tav::ula {

/// Calls a function periodically for as long as it lives, in all modes of the run loop of the
/// thread that made it.
/// Thread: only the one that made it; calls come while that thread's run loop runs.
class ULA_API NativeTimer {
public:
    /// Units: milliseconds; the first call comes one interval from now. An interval of 0 calls
    /// once, at the run loop's next turn. Owner: the caller, who deletes the timer to stop it.
    static NativeTimer* createTimer(unsigned int interval, const util::Function0<void>& function);
    NativeTimer(const NativeTimer&) = delete;
    NativeTimer& operator=(const NativeTimer&) = delete;
    /// Also from within the timer's own function.
    virtual ~NativeTimer();

    /// Calls the function, out of turn.
    void fire();

protected:
    explicit NativeTimer(const util::Function0<void>& function);

private:
    util::Function0<void> _function;
    bool _enabled = true;
};

}  // namespace tav::ula
