// SPDX-License-Identifier: MIT
#pragma once

#include "ula/MainThreadCaller.h"
#include "ula/src/Mac/CFOwner.h"

#include <CoreFoundation/CoreFoundation.h>

namespace tav::ula {

/// Has the run loop of the constructing thread run the jobs, in all of its common modes.
class MainThreadCallerMacCF : public JobBasedMainThreadCaller {
public:
    MainThreadCallerMacCF();
    ~MainThreadCallerMacCF() override;

    void wakeUpMainThread() override;

private:
    static void perform(void* caller);

    CFOwner<CFRunLoopSourceRef> _source;
    CFRunLoopRef _runLoop;  ///< not retained: it lives as long as the thread
};

}  // namespace tav::ula
