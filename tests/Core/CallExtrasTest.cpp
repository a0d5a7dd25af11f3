// SPDX-License-Identifier: MIT
// Calls with a time limit and calls that belong to an object.
#include "tests/Core/TestCaller.h"
#include "ula/CallOwner.h"
#include "ula/foundation/Exception.h"

#include <gtest/gtest.h>
#include <latch>
#include <optional>
#include <stdexcept>
#include <thread>

namespace tav::ula {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;
using Handle = util::SharedPtr<CallHandle>;

class CallExtras : public testing::Test {
protected:
    TestCaller caller;
    int calls = 0;
    const util::Function0<void> count = [this] { ++calls; };
};

using CallSyncWithin = CallExtras;

TEST_F(CallSyncWithin, RunsInlineOnTheMainThreadWhateverTheLimit) {
    EXPECT_EQ(caller.callSyncWithin(milliseconds(0), count), CallOutcome::Done);
    EXPECT_EQ(calls, 1);
    EXPECT_THROW(caller.callSyncWithin(hours(1), [] { throw 7; }), int);
}

TEST_F(CallSyncWithin, IsDoneWhenTheFunctionHasRunInTime) {
    std::jthread other(
        [this] { EXPECT_EQ(caller.callSyncWithin(hours(1), count), CallOutcome::Done); });
    caller.wakeUps.acquire();
    caller.runPendingJobs();
    other.join();
    EXPECT_EQ(calls, 1);
}

TEST_F(CallSyncWithin, LongestLimitThereIsDoesNotOverflow) {
    std::jthread other([this] {
        EXPECT_EQ(caller.callSyncWithin(milliseconds::max(), count), CallOutcome::Done);
    });
    caller.wakeUps.acquire();
    caller.runPendingJobs();
}

TEST_F(CallSyncWithin, IsCancelledWhenTheFunctionHasNotBegunInTime) {
    std::jthread([this] {
        EXPECT_EQ(caller.callSyncWithin(milliseconds(5), count), CallOutcome::Cancelled);
    }).join();
    caller.runPendingJobs();
    EXPECT_EQ(calls, 0);
}

TEST_F(CallSyncWithin, IsCancelledAtOnceForALimitOfNothing) {
    std::jthread([this] {
        EXPECT_EQ(caller.callSyncWithin(milliseconds(0), count), CallOutcome::Cancelled);
        EXPECT_EQ(caller.callSyncWithin(milliseconds(-1), count), CallOutcome::Cancelled);
        EXPECT_EQ(caller.callSyncWithin(milliseconds::min(), count), CallOutcome::Cancelled);
    }).join();
    caller.runPendingJobs();
    EXPECT_EQ(calls, 0);
}

TEST_F(CallSyncWithin, IsStillRunningWhenTheFunctionHasBegunAndGoesOn) {
    CallOutcome outcome = CallOutcome::Cancelled;
    // A busy machine may not begin with it in time.
    for (int limit = 50; outcome == CallOutcome::Cancelled && limit <= 50'000; limit *= 10) {
        std::latch returned(1);
        std::jthread other([&] {
            outcome = caller.callSyncWithin(milliseconds(limit), [&] {
                returned.wait();
                ++calls;
                throw std::runtime_error("too late for anybody");
            });
            returned.count_down();
        });
        caller.wakeUps.acquire();
        caller.runPendingJobs();
    }
    EXPECT_EQ(outcome, CallOutcome::StillRunning);
    EXPECT_EQ(calls, 1);
}

TEST_F(CallSyncWithin, ThrowsWhatTheFunctionThrew) {
    std::jthread other([this] {
        try {
            caller.callSyncWithin(hours(1), [] { throw std::runtime_error("disk full"); });
            ADD_FAILURE() << "nothing was thrown";
        } catch (const Exception& exception) {
            EXPECT_STREQ(exception.what(), "disk full");
        }
    });
    caller.wakeUps.acquire();
    caller.runPendingJobs();
}

TEST_F(CallSyncWithin, IsCancelledBeforeItsLimitWhenTheQueueIsEmptied) {
    std::jthread other(
        [this] { EXPECT_EQ(caller.callSyncWithin(hours(1), count), CallOutcome::Cancelled); });
    caller.wakeUps.acquire();
    caller.cancelAllJobs();
    other.join();
    EXPECT_EQ(calls, 0);
}

TEST_F(CallSyncWithin, EmptyFunctionIsDone) {
    std::jthread other(
        [this] { EXPECT_EQ(caller.callSyncWithin(hours(1), {}), CallOutcome::Done); });
    caller.wakeUps.acquire();
    caller.runPendingJobs();
}

using CallAsyncOwned = CallExtras;

TEST_F(CallAsyncOwned, RunsWhileItsOwnerLives) {
    const CallOwner owner;
    const Handle handle = caller.callAsyncOwned(owner, count);
    caller.callAsyncOwned(owner, {});
    caller.runPendingJobs();
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(handle->isFinished());
}

TEST_F(CallAsyncOwned, IsDroppedWhenItsOwnerHasGone) {
    Handle handle;
    {
        const CallOwner owner;
        handle = caller.callAsyncOwned(owner, count);
    }
    caller.runPendingJobs();
    EXPECT_EQ(calls, 0);
    EXPECT_TRUE(handle->isFinished());
}

TEST_F(CallAsyncOwned, OwnerMayGoInItsOwnCall) {
    std::optional<CallOwner> owner(std::in_place);
    caller.callAsyncOwned(*owner, [&] {
        owner.reset();
        ++calls;
    });
    caller.callAsyncOwned(*owner, count);
    caller.runPendingJobs();
    EXPECT_EQ(calls, 1);
}

TEST_F(CallAsyncOwned, OwnerThatGoesInAnotherThreadWaitsForTheRunningCall) {
    std::optional<CallOwner> owner(std::in_place);
    std::latch begun(1);
    std::atomic<bool> ended = false;
    std::jthread other([&] {
        begun.wait();
        owner.reset();
        EXPECT_TRUE(ended);
    });
    caller.callAsyncOwned(*owner, [&] {
        begun.count_down();
        // Gives a destructor that does not wait the time to be found out.
        std::this_thread::sleep_for(milliseconds(20));
        ended = true;
    });
    caller.runPendingJobs();
}

TEST_F(CallAsyncOwned, ThrowingCallLetsItsOwnerGo) {
    {
        const CallOwner owner;
        caller.callAsyncOwned(owner, [] { throw 7; });
        caller.runPendingJobs();
        std::jthread([&] { const CallOwner inner; }).join();
    }
    SUCCEED() << "the destructor returned";
}

}  // namespace
}  // namespace tav::ula
