// SPDX-License-Identifier: MIT
#include "ThreadRunLoop.h"

#include "../AutoreleasePool.h"
#include "ForkGuard.h"
#include "ModeName.h"
#include "RunLoop.h"
#include "RunLoopHost.h"
#include "RunLoopObject.h"

#include <CoreFoundation/CFString.h>
#include <unistd.h>

/// Carries the main loop's attachment to the main thread.
@interface ULAMainLoopAttachment : NSObject
+ (void)attach;
@end

namespace cf {

namespace {

thread_local RunLoop* threadLoop = nullptr;
thread_local bool threadHasEnded = false;

/// Ends the loop with its thread. NSRunLoop is not touched then: GNUstep may have taken it apart.
class ThreadEnd {
public:
    ThreadEnd() = default;
    ~ThreadEnd() {
        threadHasEnded = true;
        if (loop == nullptr)
            return;
        loop->close();
        threadLoop = nullptr;
        loop->release();
    }
    ThreadEnd(const ThreadEnd&) = delete;
    ThreadEnd& operator=(const ThreadEnd&) = delete;

    RunLoop* loop = nullptr;
};
thread_local ThreadEnd threadEnd;

RunLoop* mainLoop = nullptr;

bool isMainThread() {
    return getpid() == gettid();
}

// The main loop lives as long as the process.
RunLoop& madeMain() {
    std::lock_guard guard(ThreadRunLoop::mainLock());
    if (mainLoop == nullptr)
        mainLoop = &newRunLoop();
    return *mainLoop;
}

void attachHost(RunLoop& loop) {
    threadLoop = &loop;
    loop.setHost(makeRunLoopHost(loop));
}

void attachFromElsewhere() {
    NSArray* modes = [NSArray
        arrayWithObjects:NSDefaultRunLoopMode,
                         reinterpret_cast<NSString*>(CFSTR("NSModalPanelRunLoopMode")),
                         reinterpret_cast<NSString*>(CFSTR("NSEventTrackingRunLoopMode")), nil];
    [ULAMainLoopAttachment performSelectorOnMainThread:@selector(attach)
                                            withObject:nil
                                         waitUntilDone:NO
                                                 modes:modes];
}

}  // namespace

std::mutex& ThreadRunLoop::mainLock() {
    static auto* const lock = new std::mutex;
    return *lock;
}

RunLoop* ThreadRunLoop::ofThisThread() {
    return threadLoop;
}

RunLoop* ThreadRunLoop::current() {
    if (threadLoop != nullptr || threadHasEnded)
        return threadLoop;
    AutoreleasePool pool;
    if (isMainThread()) {
        attachHost(madeMain());
    } else {
        threadEnd.loop = &newRunLoop();
        attachHost(*threadEnd.loop);
    }
    return threadLoop;
}

RunLoop& ThreadRunLoop::main() {
    if (isMainThread())
        return *current();
    {
        std::lock_guard guard(ThreadRunLoop::mainLock());
        if (mainLoop != nullptr)
            return *mainLoop;
    }
    AutoreleasePool pool;
    RunLoop& loop = madeMain();
    attachFromElsewhere();
    return loop;
}

void ThreadRunLoop::enter(RunLoop& loop) {
    ForkGuard::instance().enter(loop);
}

void ThreadRunLoop::leave(RunLoop& loop) {
    ForkGuard::instance().leave(loop);
}

}  // namespace cf

@implementation ULAMainLoopAttachment

+ (void)attach {
    cf::ThreadRunLoop::current();
}

@end
