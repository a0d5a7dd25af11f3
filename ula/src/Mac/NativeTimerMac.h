// SPDX-License-Identifier: MIT
#pragma once

#include "ula/NativeTimer.h"
#include "ula/src/Mac/CFOwner.h"

#include <CoreFoundation/CoreFoundation.h>

namespace tav::ula {

class NativeTimerMac : public NativeTimer {
public:
    NativeTimerMac(unsigned int interval, const util::Function0<void>& function);
    ~NativeTimerMac() override;

private:
    static void callOut(CFRunLoopTimerRef timer, void* self);

    CFOwner<CFRunLoopTimerRef> _timer;
};

}  // namespace tav::ula
