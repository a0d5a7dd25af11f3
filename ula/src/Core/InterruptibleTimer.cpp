// SPDX-License-Identifier: MIT
#include "ula/InterruptibleTimer.h"

namespace tav::ula {

InterruptibleTimer::InterruptibleTimer(unsigned int pollInterval,
                                       const util::Function0<void>& function, unsigned int timeout,
                                       unsigned int minimumTimeout)
    : _timeout(timeout),
      _minimumTimeout(minimumTimeout),
      _lastStart(time::Timestamp::now()),
      _function(function) {
    _nativeTimer.reset(NativeTimer::createTimer(
        pollInterval, util::Function0<void>(this, &InterruptibleTimer::fire)));
}

InterruptibleTimer::~InterruptibleTimer() {
    // Before anything that its calls use.
    _nativeTimer.reset();
}

void InterruptibleTimer::restart() {
    _lastStart = time::Timestamp::now();
}

bool InterruptibleTimer::isTimeToCall() const {
    const std::int64_t elapsed =
        (time::Timestamp::now() - _lastStart) * 1000 / time::Timestamp::unitsPerSecond();
    if (elapsed > _timeout)
        return true;
    // At or above here, strictly above there: this is meant.
    return _minimumTimeout != 0 && elapsed >= _minimumTimeout;
}

void InterruptibleTimer::fire() {
    if (!isTimeToCall())
        return;
    restart();
    // A copy, as the function may delete this object.
    if (const util::Function0<void> function = _function)
        function();
}

}  // namespace tav::ula
