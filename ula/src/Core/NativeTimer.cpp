// SPDX-License-Identifier: MIT
#include "ula/NativeTimer.h"

namespace tav::ula {

NativeTimer::NativeTimer(const util::Function0<void>& function) : _function(function) {
}

NativeTimer::~NativeTimer() = default;

void NativeTimer::fire() {
    if (!_enabled || !_function)
        return;
    // A copy, as the function may delete this object.
    const util::Function0<void> function = _function;
    function();
}

}  // namespace tav::ula
