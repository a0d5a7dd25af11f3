// SPDX-License-Identifier: MIT
// What CFRunLoopRunInMode and CFRunLoopRun answer, and when.
#include "RunLoopItems.h"

#include <gtest/gtest.h>
#include <thread>

namespace {

CFStringRef ownMode() {
    return CFSTR("OwnMode");
}

}  // namespace

TEST(RunLoopRun, AnEmptyModeIsFinishedAtOnce) {
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 10, false), kCFRunLoopRunFinished);
    EXPECT_EQ(CFRunLoopRunInMode(ownMode(), 10, false), kCFRunLoopRunFinished);
    CFRunLoopRun();
}

TEST(RunLoopRun, AnEmptyModeOfAThreadIsFinishedAtOnce) {
    CFRunLoopRunResult result = 0;
    std::thread([&] { result = CFRunLoopRunInMode(kCFRunLoopDefaultMode, 10, false); }).join();
    EXPECT_EQ(result, kCFRunLoopRunFinished);
}

TEST(RunLoopRun, TheCommonModesAreNoModeToRunIn) {
    TestSource source;
    source.add();
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopCommonModes, 10, false), kCFRunLoopRunFinished);
}

TEST(RunLoopRun, ZeroSecondsMakeOnePassWithoutWaiting) {
    TestSource source;
    source.add();
    EXPECT_EQ(onePass(), kCFRunLoopRunTimedOut);
    source.signal();
    EXPECT_EQ(onePass(), kCFRunLoopRunTimedOut);
    EXPECT_EQ(source.calls(), 1);
}

TEST(RunLoopRun, TheTimeLimitEndsTheRun) {
    TestSource source;
    source.add();
    CFAbsoluteTime begin = CFAbsoluteTimeGetCurrent();
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.05, true), kCFRunLoopRunTimedOut);
    EXPECT_GE(CFAbsoluteTimeGetCurrent() - begin, 0.049);
}

TEST(RunLoopRun, AHandledSourceEndsTheRunWhenAskedFor) {
    TestSource source;
    source.add().signal();
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 10, true), kCFRunLoopRunHandledSource);
}

TEST(RunLoopRun, AHandledSourceDoesNotEndTheRunOtherwise) {
    TestSource source;
    source.add().signal();
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.01, false), kCFRunLoopRunTimedOut);
    EXPECT_EQ(source.calls(), 1);
}

TEST(RunLoopRun, OneSourceIsHandledAtATimeWhenAskedFor) {
    TestSource first;
    TestSource second;
    first.add().signal();
    second.add().signal();
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 10, true), kCFRunLoopRunHandledSource);
    EXPECT_EQ(first.calls() + second.calls(), 1);
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 10, true), kCFRunLoopRunHandledSource);
    EXPECT_EQ(first.calls() + second.calls(), 2);
}

TEST(RunLoopRun, AFiredTimerIsNoHandledSource) {
    TestSource source;
    source.add();
    TestTimer timer(0, 0.001);
    timer.add();
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.02, true), kCFRunLoopRunTimedOut);
    EXPECT_GE(timer.calls(), 1);
}

TEST(RunLoopRun, StopEndsTheRun) {
    TestSource source(stopThisLoop);
    source.add().signal();
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 10, false), kCFRunLoopRunStopped);
}

TEST(RunLoopRun, StopGoesBeforeAHandledSource) {
    TestSource source(stopThisLoop);
    source.add().signal();
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 10, true), kCFRunLoopRunStopped);
}

TEST(RunLoopRun, StopFromAnotherThreadEndsAWaitingRun) {
    TestSource source;
    source.add();
    CFRunLoopRef loop = CFRunLoopGetCurrent();
    std::thread other([loop] {
        while (!CFRunLoopIsWaiting(loop))
            std::this_thread::yield();
        CFRunLoopStop(loop);
    });
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 20, false), kCFRunLoopRunStopped);
    other.join();
}

TEST(RunLoopRun, StopEndsOnlyTheInnermostRun) {
    CFRunLoopRunResult inner = 0;
    TestSource stopper(stopThisLoop);
    TestSource nesting([&] {
        stopper.signal();
        inner = CFRunLoopRunInMode(kCFRunLoopDefaultMode, 10, false);
    });
    stopper.add();
    nesting.add().signal();
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.01, false), kCFRunLoopRunTimedOut);
    EXPECT_EQ(inner, kCFRunLoopRunStopped);
}

TEST(RunLoopRun, StopBeforeTheRunIsForgotten) {
    TestSource source;
    source.add();
    stopThisLoop();
    EXPECT_EQ(onePass(), kCFRunLoopRunTimedOut);
}

TEST(RunLoopRun, ARunWhoseLastItemGoesIsFinished) {
    TestTimer timer(0.001, 0);
    timer.add();
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 10, false), kCFRunLoopRunFinished);
    EXPECT_EQ(timer.calls(), 1);
}

TEST(RunLoopRun, RunReturnsWhenItIsStopped) {
    TestSource source(stopThisLoop);
    source.add().signal();
    CFRunLoopRun();
    EXPECT_EQ(source.calls(), 1);
}

TEST(RunLoopRun, AWakeUpAloneEndsNothing) {
    TestSource source;
    source.add();
    CFRunLoopWakeUp(CFRunLoopGetCurrent());
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.01, true), kCFRunLoopRunTimedOut);
}

TEST(RunLoopRun, TheCurrentModeIsThatOfTheInnermostRun) {
    CFStringRef seen = nullptr;
    TestSource inner([&] { seen = CFRunLoopCopyCurrentMode(CFRunLoopGetCurrent()); });
    TestSource outer([&] {
        inner.signal();
        onePass(ownMode());
    });
    inner.add(ownMode());
    outer.add().signal();
    onePass();
    ASSERT_NE(seen, nullptr);
    EXPECT_TRUE(CFEqual(seen, ownMode()));
    CFRelease(seen);
    EXPECT_EQ(CFRunLoopCopyCurrentMode(CFRunLoopGetCurrent()), nullptr);
}

TEST(RunLoopRun, ALimitThatPassesWithinANestedRunIsKeptAfterIt) {
    TestSource keeper;
    keeper.add();
    TestSource nesting([] { CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.05, false); });
    nesting.add().signal();
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.01, false), kCFRunLoopRunTimedOut);
}

TEST(RunLoopRun, ALoopDoesNotWaitForItself) {
    TestSource source([] { EXPECT_FALSE(CFRunLoopIsWaiting(CFRunLoopGetCurrent())); });
    source.add().signal();
    onePass();
    EXPECT_EQ(source.calls(), 1);
}
