// SPDX-License-Identifier: MIT
#include "ula/InterruptibleTimer.h"
#include "ula/NativeTimer.h"

#include <CoreFoundation/CoreFoundation.h>
#include <chrono>
#include <gmock/gmock.h>
#include <memory>
#include <thread>

namespace tav::ula {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// Runs the calling thread's loop until the time is over, or it is stopped.
CFRunLoopRunResult runFor(double seconds) {
    return CFRunLoopRunInMode(kCFRunLoopDefaultMode, seconds, false);
}

void stop() {
    CFRunLoopStop(CFRunLoopGetCurrent());
}

milliseconds since(Clock::time_point start) {
    return std::chrono::duration_cast<milliseconds>(Clock::now() - start);
}

TEST(NativeTimerTest, FirstCallComesOneIntervalAfterCreation) {
    const auto start = Clock::now();
    const std::unique_ptr<NativeTimer> timer(NativeTimer::createTimer(50, stop));
    EXPECT_EQ(runFor(60), kCFRunLoopRunStopped);
    EXPECT_GE(since(start), milliseconds(49));
}

TEST(NativeTimerTest, CallsComeAgainAndAgainOnTheGridOfTheFirst) {
    int calls = 0;
    const auto start = Clock::now();
    const std::unique_ptr<NativeTimer> timer(NativeTimer::createTimer(10, [&] {
        if (++calls == 20)
            stop();
    }));
    EXPECT_EQ(runFor(60), kCFRunLoopRunStopped);
    EXPECT_GE(since(start), milliseconds(199));
}

TEST(NativeTimerTest, IntervalOfZeroCallsOnce) {
    int calls = 0;
    const std::unique_ptr<NativeTimer> timer(NativeTimer::createTimer(0, [&] { ++calls; }));
    EXPECT_EQ(calls, 0);
    // Nothing is left to wait for.
    EXPECT_EQ(runFor(60), kCFRunLoopRunFinished);
    EXPECT_EQ(calls, 1);
}

TEST(NativeTimerTest, DeletionStopsTheCalls) {
    int calls = 0;
    std::unique_ptr<NativeTimer> timer(NativeTimer::createTimer(1, [&] { ++calls; }));
    timer.reset();
    EXPECT_EQ(runFor(60), kCFRunLoopRunFinished);
    EXPECT_EQ(calls, 0);
}

TEST(NativeTimerTest, TimerMayBeDeletedByItsOwnFunction) {
    int calls = 0;
    NativeTimer* timer = nullptr;
    timer = NativeTimer::createTimer(1, [&] {
        delete timer;
        ++calls;
    });
    EXPECT_EQ(runFor(60), kCFRunLoopRunFinished);
    EXPECT_EQ(calls, 1);
}

TEST(NativeTimerTest, FireCallsOutOfTurn) {
    int calls = 0;
    const std::unique_ptr<NativeTimer> timer(NativeTimer::createTimer(3'600'000, [&] { ++calls; }));
    timer->fire();
    timer->fire();
    EXPECT_EQ(calls, 2);
}

TEST(NativeTimerTest, EmptyFunctionIsAccepted) {
    const std::unique_ptr<NativeTimer> timer(NativeTimer::createTimer(0, {}));
    timer->fire();
    EXPECT_EQ(runFor(60), kCFRunLoopRunFinished);
}

TEST(NativeTimerTest, RunsInTheLoopOfTheThreadThatMadeIt) {
    std::jthread([] {
        std::thread::id where;
        const std::unique_ptr<NativeTimer> timer(NativeTimer::createTimer(1, [&] {
            where = std::this_thread::get_id();
            stop();
        }));
        EXPECT_EQ(runFor(60), kCFRunLoopRunStopped);
        EXPECT_EQ(where, std::this_thread::get_id());
    }).join();
}

TEST(NativeTimerTest, LateLoopCallsOnceAndGoesOnWithTheGrid) {
    std::vector<milliseconds> times;
    const auto start = Clock::now();
    const std::unique_ptr<NativeTimer> timer(NativeTimer::createTimer(100, [&] {
        times.push_back(since(start));
        if (times.size() == 1)
            std::this_thread::sleep_for(milliseconds(250));
        if (times.size() == 3)
            stop();
    }));
    EXPECT_EQ(runFor(60), kCFRunLoopRunStopped);
    // Due at 100, 200, 300 and 400; back at 350: one call for what was missed, then the grid.
    ASSERT_EQ(times.size(), 3u);
    EXPECT_GE(times[1], milliseconds(349));
    EXPECT_GE(times[2], milliseconds(399));
}

/// The documented bounds; the poll itself is the timer's.
class InterruptibleTimerTest : public testing::Test {
protected:
    std::unique_ptr<InterruptibleTimer> make(unsigned int poll, unsigned int timeout,
                                             unsigned int minimumTimeout) {
        return std::make_unique<InterruptibleTimer>(
            poll,
            [this] {
                ++calls;
                stop();
            },
            timeout, minimumTimeout);
    }
    int calls = 0;
};

TEST_F(InterruptibleTimerTest, RestartedTimerIsNotCalledUntilItIsLeftAlone) {
    auto start = Clock::now();
    const auto timer = make(100, 1000, 0);
    // A round in which the machine halted for so long that the timer was due says nothing.
    for (int silent = 0, rounds = 0; silent < 4; ++rounds) {
        ASSERT_LT(rounds, 50);
        const int before = calls;
        runFor(0.5);
        if (since(start) < milliseconds(1000)) {
            ++silent;
            EXPECT_EQ(calls, before);
        }
        start = Clock::now();
        timer->restart();
    }
    const int before = calls;
    EXPECT_EQ(runFor(60), kCFRunLoopRunStopped);
    EXPECT_EQ(calls, before + 1);
    EXPECT_GT(since(start), milliseconds(1000));
}

TEST_F(InterruptibleTimerTest, MinimumTimeoutCallsAtTheFirstPollThatReachesIt) {
    const auto start = Clock::now();
    const auto timer = make(10, 1000, 300);
    EXPECT_EQ(runFor(60), kCFRunLoopRunStopped);
    EXPECT_EQ(calls, 1);
    EXPECT_GE(since(start), milliseconds(300));
}

TEST_F(InterruptibleTimerTest, MinimumTimeoutAboveTheTimeoutDoesNotDelayTheCall) {
    const auto timer = make(10, 20, 3'600'000);
    EXPECT_EQ(runFor(60), kCFRunLoopRunStopped);
    EXPECT_EQ(calls, 1);
}

TEST_F(InterruptibleTimerTest, CalledAgainEachTimeTheBoundIsPassedAnew) {
    const auto start = Clock::now();
    const auto timer = make(10, 50, 0);
    for (int i = 1; i <= 3; ++i) {
        EXPECT_EQ(runFor(60), kCFRunLoopRunStopped);
        EXPECT_EQ(calls, i);
    }
    EXPECT_GT(since(start), milliseconds(150));
}

TEST_F(InterruptibleTimerTest, TimeoutOfZeroWantsMoreThanAMillisecondBegun) {
    const auto timer = make(3'600'000, 0, 0);
    timer->restart();
    timer->fire();
    // Not strictly greater yet, unless a whole millisecond has gone by.
    const int atOnce = calls;
    std::this_thread::sleep_for(milliseconds(2));
    timer->fire();
    EXPECT_GT(calls, atOnce);
}

TEST_F(InterruptibleTimerTest, FireBeforeItsTimeDoesNothing) {
    const auto timer = make(3'600'000, 3'600'000, 0);
    timer->fire();
    EXPECT_EQ(calls, 0);
}

TEST_F(InterruptibleTimerTest, DeletionBeforeTheTimeMeansThatItIsNeverCalled) {
    auto timer = make(1, 1, 0);
    timer.reset();
    EXPECT_EQ(runFor(60), kCFRunLoopRunFinished);
    EXPECT_EQ(calls, 0);
}

TEST(InterruptibleTimerLife, TimerMayBeDeletedByItsOwnFunction) {
    int calls = 0;
    InterruptibleTimer* timer = nullptr;
    timer = new InterruptibleTimer(
        1,
        [&] {
            delete timer;
            ++calls;
        },
        1, 0);
    EXPECT_EQ(runFor(60), kCFRunLoopRunFinished);
    EXPECT_EQ(calls, 1);
}

TEST(InterruptibleTimerLife, EmptyFunctionIsAccepted) {
    InterruptibleTimer timer(3'600'000, {}, 0, 0);
    std::this_thread::sleep_for(milliseconds(2));
    timer.fire();
}

}  // namespace
}  // namespace tav::ula
