// SPDX-License-Identifier: MIT
#include "AutoreleasePool.h"
#include "RunLoop/Membership.h"
#include "RunLoop/ModeName.h"
#include "RunLoop/RunLoopObject.h"
#include "RunLoop/ThreadRunLoop.h"

#include <CoreFoundation/CFRunLoop.h>
#include <CoreFoundation/RunLoopIntegration.h>

using cf::loopOf;
using cf::Membership;
using cf::modeName;
using cf::sourceOf;
using cf::ThreadRunLoop;
using cf::timerOf;

namespace {

constexpr CFTimeInterval forever = 1e10;

}  // namespace

CFRunLoopRef CFRunLoopGetCurrent(void) {
    cf::RunLoop* loop = ThreadRunLoop::current();
    return loop == nullptr ? nullptr : loop->object();
}

CFRunLoopRef CFRunLoopGetMain(void) {
    return ThreadRunLoop::main().object();
}

void CFRunLoopRun(void) {
    CFRunLoopRunResult result = 0;
    do
        result = CFRunLoopRunInMode(kCFRunLoopDefaultMode, forever, false);
    while (result != kCFRunLoopRunStopped && result != kCFRunLoopRunFinished);
}

CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode mode, CFTimeInterval seconds,
                                      Boolean returnAfterSourceHandled) {
    cf::RunLoop* loop = ThreadRunLoop::current();
    if (loop == nullptr)
        return kCFRunLoopRunFinished;
    return loop->run(modeName(mode), seconds, returnAfterSourceHandled != 0);
}

void CFRunLoopStop(CFRunLoopRef runLoop) {
    loopOf(runLoop).stop();
}

void CFRunLoopWakeUp(CFRunLoopRef runLoop) {
    loopOf(runLoop).wake();
}

Boolean CFRunLoopIsWaiting(CFRunLoopRef runLoop) {
    cf::RunLoop& loop = loopOf(runLoop);
    return &loop != ThreadRunLoop::ofThisThread() && loop.isWaiting();
}

CFRunLoopMode CFRunLoopCopyCurrentMode(CFRunLoopRef runLoop) {
    CFStringRef mode = loopOf(runLoop).currentMode();
    return mode == nullptr ? nullptr : static_cast<CFRunLoopMode>(CFRetain(mode));
}

void CFRunLoopAddCommonMode(CFRunLoopRef runLoop, CFRunLoopMode mode) {
    cf::RunLoop& loop = loopOf(runLoop);
    auto entered = loop.addCommonMode(modeName(mode));
    loop.itemsChanged();
    for (auto& source : entered)
        source->didEnter(runLoop, modeName(mode));
}

CFRunLoopSourceRef CFRunLoopSourceCreate(CFAllocatorRef, CFIndex order,
                                         CFRunLoopSourceContext* context) {
    if (context == nullptr || context->version != 0)
        return nullptr;
    return cf::newSource(order, *context);
}

CFIndex CFRunLoopSourceGetOrder(CFRunLoopSourceRef source) {
    return sourceOf(source).order();
}

void CFRunLoopSourceGetContext(CFRunLoopSourceRef source, CFRunLoopSourceContext* context) {
    *context = sourceOf(source).context();
}

void CFRunLoopSourceSignal(CFRunLoopSourceRef source) {
    sourceOf(source).signal();
}

void CFRunLoopSourceInvalidate(CFRunLoopSourceRef source) {
    Membership::invalidate(sourceOf(source));
}

Boolean CFRunLoopSourceIsValid(CFRunLoopSourceRef source) {
    return sourceOf(source).isValid();
}

void CFRunLoopAddSource(CFRunLoopRef runLoop, CFRunLoopSourceRef source, CFRunLoopMode mode) {
    Membership::add(loopOf(runLoop), sourceOf(source), modeName(mode));
}

void CFRunLoopRemoveSource(CFRunLoopRef runLoop, CFRunLoopSourceRef source, CFRunLoopMode mode) {
    Membership::remove(loopOf(runLoop), sourceOf(source), modeName(mode));
}

Boolean CFRunLoopContainsSource(CFRunLoopRef runLoop, CFRunLoopSourceRef source,
                                CFRunLoopMode mode) {
    return loopOf(runLoop).contains(sourceOf(source), modeName(mode));
}

CFRunLoopTimerRef CFRunLoopTimerCreate(CFAllocatorRef, CFAbsoluteTime fireDate,
                                       CFTimeInterval interval, CFOptionFlags, CFIndex,
                                       CFRunLoopTimerCallBack callout,
                                       CFRunLoopTimerContext* context) {
    return cf::newTimer(fireDate, interval, callout,
                        context == nullptr ? CFRunLoopTimerContext{} : *context);
}

CFTimeInterval CFRunLoopTimerGetInterval(CFRunLoopTimerRef timer) {
    return timerOf(timer).intervalSeconds();
}

Boolean CFRunLoopTimerDoesRepeat(CFRunLoopTimerRef timer) {
    return timerOf(timer).repeats();
}

CFAbsoluteTime CFRunLoopTimerGetNextFireDate(CFRunLoopTimerRef timer) {
    return timerOf(timer).isValid() ? timerOf(timer).nextFireDate() : 0;
}

void CFRunLoopTimerSetNextFireDate(CFRunLoopTimerRef timer, CFAbsoluteTime fireDate) {
    Membership::setFireDate(timerOf(timer), fireDate);
}

void CFRunLoopTimerInvalidate(CFRunLoopTimerRef timer) {
    Membership::invalidate(timerOf(timer));
}

Boolean CFRunLoopTimerIsValid(CFRunLoopTimerRef timer) {
    return timerOf(timer).isValid();
}

void CFRunLoopTimerGetContext(CFRunLoopTimerRef timer, CFRunLoopTimerContext* context) {
    *context = timerOf(timer).context();
}

void CFRunLoopAddTimer(CFRunLoopRef runLoop, CFRunLoopTimerRef timer, CFRunLoopMode mode) {
    Membership::add(loopOf(runLoop), timerOf(timer), modeName(mode));
}

void CFRunLoopRemoveTimer(CFRunLoopRef runLoop, CFRunLoopTimerRef timer, CFRunLoopMode mode) {
    Membership::remove(loopOf(runLoop), timerOf(timer), modeName(mode));
}

Boolean CFRunLoopContainsTimer(CFRunLoopRef runLoop, CFRunLoopTimerRef timer, CFRunLoopMode mode) {
    return loopOf(runLoop).contains(timerOf(timer), modeName(mode));
}

int ULARunLoopGetDescriptor(CFRunLoopRef runLoop) {
    return loopOf(runLoop).pollDescriptor();
}

Boolean ULARunLoopServe(CFRunLoopRef runLoop) {
    cf::RunLoop& loop = loopOf(runLoop);
    if (&loop != ThreadRunLoop::ofThisThread())
        return false;
    cf::AutoreleasePool pool;
    loop.serve(cf::defaultMode(), false);
    return true;
}
