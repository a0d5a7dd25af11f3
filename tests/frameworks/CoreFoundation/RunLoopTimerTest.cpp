// SPDX-License-Identifier: MIT
#include "RunLoopItems.h"

#include <cmath>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace {

void stall(double seconds) {
    CFAbsoluteTime end = CFAbsoluteTimeGetCurrent() + seconds;
    while (CFAbsoluteTimeGetCurrent() < end)
        continue;
}

}  // namespace

TEST(RunLoopTimer, ARepeatingTimerFiresOnItsGridWithoutDrift) {
    constexpr double interval = 0.005;
    std::vector<CFAbsoluteTime> dates;
    TestTimer timer(interval, interval, [&] {
        // Within the call-out the next fire date is told; the grid is what lies before it.
        dates.push_back(CFRunLoopTimerGetNextFireDate(timer.get()) - interval);
        if (dates.size() == 100)
            stopThisLoop();
    });
    CFAbsoluteTime first = CFRunLoopTimerGetNextFireDate(timer.get());
    timer.add();
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 20, false), kCFRunLoopRunStopped);
    for (CFAbsoluteTime date : dates) {
        double steps = (date - first) / interval;
        EXPECT_NEAR(steps, std::round(steps), 1e-3);
    }
}

TEST(RunLoopTimer, ATimerNeverFiresBeforeItsDate) {
    TestTimer timer(0.002, 0.002, [&] {
        EXPECT_GE(CFAbsoluteTimeGetCurrent(), CFRunLoopTimerGetNextFireDate(timer.get()) - 0.0021);
    });
    timer.add();
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.1, false);
    EXPECT_GT(timer.calls(), 0);
}

TEST(RunLoopTimer, AStallFiresOnceAndKeepsTheGrid) {
    TestTimer timer(0.01, 0.01);
    CFAbsoluteTime first = CFRunLoopTimerGetNextFireDate(timer.get());
    timer.add();
    stall(0.055);
    onePass();
    EXPECT_EQ(timer.calls(), 1);
    double steps = (CFRunLoopTimerGetNextFireDate(timer.get()) - first) / 0.01;
    EXPECT_NEAR(steps, std::round(steps), 1e-3);
    EXPECT_GE(steps, 4.9);
}

TEST(RunLoopTimer, ACallOutLongerThanTheIntervalSkipsWhatItMissed) {
    CFAbsoluteTime callOutsEnd = 0;
    TestTimer timer(0, 0.01, [&] {
        stall(0.035);
        callOutsEnd = CFAbsoluteTimeGetCurrent();
    });
    timer.add();
    onePass();
    EXPECT_EQ(timer.calls(), 1);
    EXPECT_GT(CFRunLoopTimerGetNextFireDate(timer.get()), callOutsEnd);
}

TEST(RunLoopTimer, AnIntervalOfZeroFiresOnceAndInvalidates) {
    TestSource keeper;
    keeper.add();
    TestTimer timer(0, 0);
    timer.add();
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.02, false);
    EXPECT_EQ(timer.calls(), 1);
    EXPECT_FALSE(CFRunLoopTimerIsValid(timer.get()));
    EXPECT_FALSE(CFRunLoopTimerDoesRepeat(timer.get()));
    EXPECT_EQ(CFRunLoopTimerGetNextFireDate(timer.get()), 0);
}

TEST(RunLoopTimer, ANegativeIntervalFiresOnce) {
    TestTimer timer(0, -1);
    timer.add();
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 10, false), kCFRunLoopRunFinished);
    EXPECT_EQ(timer.calls(), 1);
    EXPECT_EQ(CFRunLoopTimerGetInterval(timer.get()), 0);
}

TEST(RunLoopTimer, AFireDateInThePastFiresInTheNextPass) {
    TestTimer timer(-3600, 7200);
    const CFAbsoluteTime first = CFRunLoopTimerGetNextFireDate(timer.get());
    timer.add();
    onePass();
    EXPECT_EQ(timer.calls(), 1);
    EXPECT_NEAR(CFRunLoopTimerGetNextFireDate(timer.get()), first + 7200, 1e-3);
}

TEST(RunLoopTimer, AFireDateAfterAllTimeIsKept) {
    TestTimer timer(1e12, 0);
    timer.add();
    EXPECT_EQ(onePass(), kCFRunLoopRunTimedOut);
    EXPECT_EQ(timer.calls(), 0);
}

TEST(RunLoopTimer, TheNextFireDateCanBeBroughtForward) {
    TestTimer timer(3600, 0);
    timer.add();
    CFRunLoopTimerSetNextFireDate(timer.get(), CFAbsoluteTimeGetCurrent() + 0.001);
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 20, false), kCFRunLoopRunFinished);
    EXPECT_EQ(timer.calls(), 1);
}

TEST(RunLoopTimer, TheNextFireDateCanBePutOff) {
    TestTimer timer(0.001, 0);
    timer.add();
    CFRunLoopTimerSetNextFireDate(timer.get(), CFAbsoluteTimeGetCurrent() + 3600);
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.01, false), kCFRunLoopRunTimedOut);
    EXPECT_EQ(timer.calls(), 0);
}

TEST(RunLoopTimer, AOneShotTimerMovedInItsCallOutStaysValid) {
    TestTimer timer(0, 0, [&] {
        if (timer.calls() == 1)
            CFRunLoopTimerSetNextFireDate(timer.get(), CFAbsoluteTimeGetCurrent() + 0.001);
    });
    timer.add();
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 20, false), kCFRunLoopRunFinished);
    EXPECT_EQ(timer.calls(), 2);
}

TEST(RunLoopTimer, ATimerMovedByAnotherThreadWakesTheLoop) {
    CFRunLoopRef loop = CFRunLoopGetCurrent();
    TestTimer timer(3600, 0);
    timer.add();
    std::thread other([&] {
        while (!CFRunLoopIsWaiting(loop))
            std::this_thread::yield();
        CFRunLoopTimerSetNextFireDate(timer.get(), CFAbsoluteTimeGetCurrent());
    });
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 20, false), kCFRunLoopRunFinished);
    other.join();
    EXPECT_EQ(timer.calls(), 1);
}

TEST(RunLoopTimer, AnInvalidTimerNeverFires) {
    TestTimer timer(0, 0.001);
    timer.add();
    CFRunLoopTimerInvalidate(timer.get());
    EXPECT_EQ(onePass(), kCFRunLoopRunFinished);
    EXPECT_EQ(timer.calls(), 0);
}

TEST(RunLoopTimer, ATimerMayInvalidateItselfInItsCallOut) {
    TestTimer timer(0, 0.001, [&] { CFRunLoopTimerInvalidate(timer.get()); });
    timer.add();
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 10, false), kCFRunLoopRunFinished);
    EXPECT_EQ(timer.calls(), 1);
}

TEST(RunLoopTimer, ATimerDoesNotFireWithinItsOwnCallOut) {
    TestSource keeper;
    keeper.add();
    TestTimer timer(0, 0.001, [] { CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.02, false); });
    timer.add();
    onePass();
    EXPECT_EQ(timer.calls(), 1);
}

TEST(RunLoopTimer, TimersFireInTheOrderOfTheirDates) {
    std::vector<int> fired;
    TestTimer second(-1, 0, [&] { fired.push_back(2); });
    TestTimer first(-2, 0, [&] { fired.push_back(1); });
    TestTimer third(-0.5, 0, [&] { fired.push_back(3); });
    second.add();
    third.add(kCFRunLoopDefaultMode);
    first.add(kCFRunLoopDefaultMode);
    onePass();
    EXPECT_EQ(fired, (std::vector<int>{1, 2, 3}));
}

TEST(RunLoopTimer, ATimerFiresOnlyInItsModes) {
    CFStringRef mode = CFSTR("OwnMode");
    TestTimer timer(0, 0);
    timer.add(mode);
    EXPECT_EQ(onePass(), kCFRunLoopRunFinished);
    EXPECT_EQ(timer.calls(), 0);
    EXPECT_EQ(CFRunLoopRunInMode(mode, 10, false), kCFRunLoopRunFinished);
    EXPECT_EQ(timer.calls(), 1);
}

TEST(RunLoopTimer, ATimerInTwoModesKeepsOneSchedule) {
    CFStringRef mode = CFSTR("OwnMode");
    TestTimer timer(0, 3600);
    timer.add(mode).add(kCFRunLoopDefaultMode);
    onePass();
    onePass(mode);
    EXPECT_EQ(timer.calls(), 1);
    CFRunLoopRemoveTimer(CFRunLoopGetCurrent(), timer.get(), mode);
    EXPECT_FALSE(CFRunLoopContainsTimer(CFRunLoopGetCurrent(), timer.get(), mode));
    EXPECT_TRUE(CFRunLoopContainsTimer(CFRunLoopGetCurrent(), timer.get(), kCFRunLoopDefaultMode));
}

TEST(RunLoopTimer, ATimerBelongsToOneLoop) {
    TestTimer timer(3600, 0);
    timer.add();
    std::thread([&] {
        timer.add();
        EXPECT_FALSE(
            CFRunLoopContainsTimer(CFRunLoopGetCurrent(), timer.get(), kCFRunLoopDefaultMode));
    }).join();
}

TEST(RunLoopTimer, TheInfoIsReleasedAtTheInvalidation) {
    static int references;
    references = 0;
    CFRunLoopTimerContext context{};
    context.retain = [](const void* info) {
        ++references;
        return info;
    };
    context.release = [](const void*) { --references; };
    CFRunLoopTimerRef timer = CFRunLoopTimerCreate(
        kCFAllocatorDefault, 0, 1, 0, 0, [](CFRunLoopTimerRef, void*) {}, &context);
    EXPECT_EQ(references, 1);
    CFRunLoopTimerInvalidate(timer);
    EXPECT_EQ(references, 0);
    CFRelease(timer);
    EXPECT_EQ(references, 0);
}

TEST(RunLoopTimer, TheInfoOfATimerThatWasNeverInvalidatedIsReleasedWithIt) {
    static int references;
    references = 1;
    CFRunLoopTimerContext context{};
    context.release = [](const void*) { --references; };
    CFRelease(CFRunLoopTimerCreate(
        kCFAllocatorDefault, 0, 1, 0, 0, [](CFRunLoopTimerRef, void*) {}, &context));
    EXPECT_EQ(references, 0);
}
