// SPDX-License-Identifier: MIT
#include "ula/src/Mac/MainThreadCallerMacCF.h"

#include "ula/src/Core/PlatformMainThreadCaller.h"

namespace tav::ula {

MainThreadCaller* createPlatformMainThreadCaller() {
    return new MainThreadCallerMacCF;
}

MainThreadCallerMacCF::MainThreadCallerMacCF() {
    CFRunLoopSourceContext context{};
    context.info = this;
    context.perform = perform;
    _source = CFRunLoopSourceCreate(kCFAllocatorDefault, 0, &context);
    _runLoop = CFRunLoopGetCurrent();
    CFRunLoopAddSource(_runLoop, _source, kCFRunLoopCommonModes);
}

MainThreadCallerMacCF::~MainThreadCallerMacCF() {
    CFRunLoopSourceInvalidate(_source);
    CFRelease(_source);
}

void MainThreadCallerMacCF::wakeUpMainThread() {
    CFRunLoopSourceSignal(_source);
    CFRunLoopWakeUp(_runLoop);
}

void MainThreadCallerMacCF::perform(void* caller) {
    static_cast<MainThreadCallerMacCF*>(caller)->runPendingJobs();
}

}  // namespace tav::ula
