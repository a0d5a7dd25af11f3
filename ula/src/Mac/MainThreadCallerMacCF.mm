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
    *_source.receive() = CFRunLoopSourceCreate(kCFAllocatorDefault, 0, &context);
    _runLoop = CFRunLoopGetCurrent();
    CFRunLoopAddSource(_runLoop, _source.get(), kCFRunLoopCommonModes);
}

MainThreadCallerMacCF::~MainThreadCallerMacCF() {
    CFRunLoopSourceInvalidate(_source.get());
}

void MainThreadCallerMacCF::wakeUpMainThread() {
    CFRunLoopSourceSignal(_source.get());
    CFRunLoopWakeUp(_runLoop);
}

void MainThreadCallerMacCF::perform(void* caller) {
    static_cast<MainThreadCallerMacCF*>(caller)->runPendingJobs();
}

}  // namespace tav::ula
