// SPDX-License-Identifier: MIT
// Calls onto a main thread that runs a real run loop.
#include "ula/MainThreadCaller.h"
#include "ula/foundation/Exception.h"

#include <CoreFoundation/CoreFoundation.h>
#include <CoreFoundation/RunLoopIntegration.h>
#include <atomic>
#include <gmock/gmock.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#import <Foundation/Foundation.h>

namespace tav::ula {
namespace {

using Handle = util::SharedPtr<CallHandle>;

class RunLoopCall : public testing::Test {
protected:
    RunLoopCall() : _pool([[NSAutoreleasePool alloc] init]) { MainThreadCaller::instance(); }
    ~RunLoopCall() override {
        MainThreadCaller::destroyInstance();
        [_pool release];
    }

    static MainThreadCaller& caller() { return *MainThreadCaller::instance(); }

    /// One turn of the loop, without waiting.
    static CFRunLoopRunResult turn() { return CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false); }

    /// Until another thread has woken the loop.
    static void waitForWakeUp() {
        pollfd loop{ULARunLoopGetDescriptor(CFRunLoopGetCurrent()), POLLIN, 0};
        ASSERT_EQ(poll(&loop, 1, 60'000), 1);
    }

    static void stopLoop() { CFRunLoopStop(CFRunLoopGetMain()); }

    int calls = 0;
    const util::Function0<void> count = [this] { ++calls; };

private:
    NSAutoreleasePool* _pool;
};

TEST_F(RunLoopCall, ThreadOfTheFirstInstanceIsTheMainThread) {
    EXPECT_TRUE(caller().isMainThread());
    EXPECT_EQ(MainThreadCaller::instance(), &caller());
    std::jthread([] { EXPECT_FALSE(caller().isMainThread()); }).join();
}

TEST_F(RunLoopCall, AsyncCallRunsAtTheNextTurnOfTheLoop) {
    const Handle handle = caller().callAsync(count);
    EXPECT_EQ(calls, 0);
    turn();
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(handle->isFinished());
}

TEST_F(RunLoopCall, ManyCallsNeedOneTurn) {
    for (int i = 0; i < 1000; ++i)
        caller().callAsync(count);
    turn();
    EXPECT_EQ(calls, 1000);
}

TEST_F(RunLoopCall, JobQueuedByAJobNeedsNoFurtherWakeUp) {
    caller().callAsync([this] {
        ++calls;
        caller().callAsync([this] {
            ++calls;
            stopLoop();
        });
    });
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 60, false), kCFRunLoopRunStopped);
    EXPECT_EQ(calls, 2);
}

TEST_F(RunLoopCall, SyncCallOfAnotherThreadIsServedWhileTheLoopWaits) {
    std::jthread other([this] {
        caller().callSync(count);
        EXPECT_EQ(calls, 1);
        caller().callSync(stopLoop);
    });
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 60, false), kCFRunLoopRunStopped);
}

TEST_F(RunLoopCall, SyncCallIsServedInTheModesOfPanelsAndMenus) {
    for (NSString* mode in @[ @"NSModalPanelRunLoopMode", @"NSEventTrackingRunLoopMode" ]) {
        std::jthread other([this] {
            caller().callSync(count);
            caller().callSync(stopLoop);
        });
        const auto name = reinterpret_cast<CFStringRef>(mode);
        EXPECT_EQ(CFRunLoopRunInMode(name, 60, false), kCFRunLoopRunStopped);
    }
    EXPECT_EQ(calls, 2);
}

TEST_F(RunLoopCall, CallsAreServedByNSRunLoop) {
    caller().callAsync(count);
    [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                             beforeDate:[NSDate dateWithTimeIntervalSinceNow:60]];
    EXPECT_EQ(calls, 1);
}

TEST_F(RunLoopCall, CallsAreNotServedInAModeThatIsNotCommon) {
    caller().callAsync(count);
    CFRunLoopRunInMode(reinterpret_cast<CFStringRef>(@"Private"), 0, false);
    EXPECT_EQ(calls, 0);
    turn();
    EXPECT_EQ(calls, 1);
}

TEST_F(RunLoopCall, DestroyInstanceLetsABlockedSyncCallReturnWithoutRunningIt) {
    // The loop is never run.
    std::jthread blocked([this] { caller().callSync(count); });
    waitForWakeUp();
    MainThreadCaller::destroyInstance();
    blocked.join();
    turn();
    EXPECT_EQ(calls, 0);
}

TEST_F(RunLoopCall, DestroyInstanceCancelsWhatIsQueued) {
    const Handle handle = caller().callAsync(count);
    MainThreadCaller::destroyInstance();
    EXPECT_TRUE(handle->isFinished());
    handle->wait();
    handle->cancel();
    turn();
    EXPECT_EQ(calls, 0);
}

TEST_F(RunLoopCall, DestroyInstanceWithoutAnInstanceDoesNothing) {
    MainThreadCaller::destroyInstance();
    MainThreadCaller::destroyInstance();
}

TEST_F(RunLoopCall, InstanceAfterDestroyInstanceTakesTheCurrentThreadForTheMainThread) {
    MainThreadCaller::destroyInstance();
    std::jthread([this] {
        EXPECT_TRUE(caller().isMainThread());
        caller().callAsync(count);
        turn();
        EXPECT_EQ(calls, 1);
        MainThreadCaller::destroyInstance();
    }).join();
    EXPECT_TRUE(caller().isMainThread());
}

TEST_F(RunLoopCall, JobMayDestroyTheCaller) {
    Handle later;
    caller().callAsync([this] {
        ++calls;
        MainThreadCaller::destroyInstance();
        ++calls;
    });
    later = caller().callAsync(count);
    turn();
    EXPECT_EQ(calls, 2);
    EXPECT_TRUE(later->isFinished());
    caller().callAsync(count);
    turn();
    EXPECT_EQ(calls, 3);
}

TEST_F(RunLoopCall, JobMayReplaceTheCaller) {
    caller().callAsync([this] {
        MainThreadCaller::destroyInstance();
        caller().callAsync(count);
    });
    caller().callAsync([] { ADD_FAILURE() << "a cancelled job ran"; });
    turn();
    turn();
    EXPECT_EQ(calls, 1);
}

TEST_F(RunLoopCall, ObjectiveCExceptionOfAJobReachesTheSyncCallerAsAnEmptyException) {
    std::jthread other([] {
        try {
            caller().callSync(
                [] { [NSException raise:NSGenericException format:@"from Objective-C"]; });
            ADD_FAILURE() << "nothing was thrown";
        } catch (const Exception& exception) {
            EXPECT_STREQ(exception.what(), "");
        }
        caller().callSync(stopLoop);
    });
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 60, false), kCFRunLoopRunStopped);
}

TEST_F(RunLoopCall, IdleLoopTakesNoWakeUps) {
    caller().callAsync(count);
    turn();
    // Sleeping through it is one voluntary switch; anything that polls makes more.
    rusage before{}, after{};
    ASSERT_EQ(getrusage(RUSAGE_THREAD, &before), 0);
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1.5, false), kCFRunLoopRunTimedOut);
    ASSERT_EQ(getrusage(RUSAGE_THREAD, &after), 0);
    EXPECT_LE(after.ru_nvcsw - before.ru_nvcsw, 3);
}

/// Runs the function in a forked child and gives its exit code.
template <class Function>
int inChild(Function function) {
    const pid_t child = fork();
    if (child == 0)
        _exit(function());
    int status = -1;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(RunLoopCall, ForkedChildHasTheCallerButNotTheJobs) {
    const Handle handle = caller().callAsync(count);
    EXPECT_EQ(inChild([&] {
                  const bool isMain = caller().isMainThread();
                  handle->wait();
                  caller().callSync(count);
                  return isMain && calls == 1 ? 0 : 1;
              }),
              0);
    turn();
    EXPECT_EQ(calls, 1);
}

TEST_F(RunLoopCall, ForkedChildMayMakeACallerOfItsOwn) {
    caller().callAsync([] { _exit(9); });
    EXPECT_EQ(inChild([&] {
                  MainThreadCaller::destroyInstance();
                  caller().callAsync(count);
                  turn();
                  return calls == 1 ? 0 : 1;
              }),
              0);
    caller().cancelAllJobs();
}

TEST_F(RunLoopCall, ForkWhileOtherThreadsQueueLeavesNoLockBehind) {
    std::atomic<bool> stop = false;
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            while (!stop)
                caller().callAsync([] {})->cancel();
        });
    for (int i = 0; i < 200; ++i)
        EXPECT_EQ(inChild([&] {
                      alarm(60);
                      caller().callAsync([] {})->cancel();
                      caller().cancelAllJobs();
                      return 0;
                  }),
                  0);
    stop = true;
}

}  // namespace
}  // namespace tav::ula
