// SPDX-License-Identifier: MIT
#include "ula/src/Mac/NativeTimerMac.h"

namespace tav::ula {

NativeTimer* NativeTimer::createTimer(unsigned int interval,
                                      const util::Function0<void>& function) {
    return new NativeTimerMac(interval, function);
}

NativeTimerMac::NativeTimerMac(unsigned int interval, const util::Function0<void>& function)
    : NativeTimer(function) {
    const CFTimeInterval period = interval * 0.001;
    CFRunLoopTimerContext context{};
    context.info = this;
    *_timer.receive() = CFRunLoopTimerCreate(
        kCFAllocatorDefault, CFAbsoluteTimeGetCurrent() + period, period, 0, 0, callOut, &context);
    CFRunLoopAddTimer(CFRunLoopGetCurrent(), _timer.get(), kCFRunLoopCommonModes);
}

NativeTimerMac::~NativeTimerMac() {
    CFRunLoopTimerInvalidate(_timer.get());
}

void NativeTimerMac::callOut(CFRunLoopTimerRef, void* self) {
    static_cast<NativeTimerMac*>(self)->fire();
}

}  // namespace tav::ula
