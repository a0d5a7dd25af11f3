// SPDX-License-Identifier: MIT
#include "tests/Core/TestCaller.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Patience.h"
#include "tests/support/ThreadState.h"

#include "ula/foundation/Exception.h"

#include <atomic>
#include <gmock/gmock.h>
#include <new>
#include <stdexcept>
#include <thread>
#include <unistd.h>

namespace tav::ula {
namespace {

using test::assertionLine;
using test::LogCapture;
using testing::ElementsAre;
using testing::IsEmpty;
using Handle = util::SharedPtr<CallHandle>;

class Refused : public CloneableException<Refused> {
public:
    using CloneableException::CloneableException;
    int code = 0;
};

class MainThreadCallerTest : public testing::Test {
protected:
    /// Runs the function in another thread and the queue in this one once it was woken up.
    template <class Function>
    void servedBesides(Function function) {
        std::jthread other(function);
        caller.wakeUps.acquire();
        caller.runPendingJobs();
    }

    TestCaller caller;
    int calls = 0;
    const util::Function0<void> count = [this] { ++calls; };
};

TEST_F(MainThreadCallerTest, AsyncCallFromTheMainThreadRunsAtTheNextDrain) {
    const Handle handle = caller.callAsync(count);
    EXPECT_EQ(calls, 0);
    EXPECT_FALSE(handle->isFinished());
    caller.runPendingJobs();
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(handle->isFinished());
}

/// Cannot be copied once it says so.
struct Uncopyable {
    explicit Uncopyable(const bool& flag) : refuses(flag) {}
    Uncopyable(const Uncopyable& other) : refuses(other.refuses) {
        if (refuses)
            throw std::bad_alloc();
    }
    void operator()() const {}
    const bool& refuses;
};

// The sanitizers see whether the job's memory is given back.
TEST_F(MainThreadCallerTest, FunctionThatCannotBeCopiedQueuesNothing) {
    bool refuses = false;
    const util::Function0<void> function = Uncopyable(refuses);
    refuses = true;
    EXPECT_THROW(caller.callAsync(function), std::bad_alloc);
    std::jthread([&] { EXPECT_THROW(caller.callSync(function), std::bad_alloc); }).join();
    EXPECT_FALSE(caller.wakeUps.try_acquire());
}

TEST_F(MainThreadCallerTest, SyncCallFromTheMainThreadRunsInlineAndQueuesNothing) {
    caller.callSync(count);
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(caller.wakeUps.try_acquire());
    caller.runPendingJobs();
    EXPECT_EQ(calls, 1);
}

TEST_F(MainThreadCallerTest, SyncCallFromTheMainThreadLetsExceptionsThroughUnchanged) {
    EXPECT_THROW(caller.callSync([] { throw std::out_of_range("far"); }), std::out_of_range);
    EXPECT_THROW(caller.callSync([] { throw 7; }), int);
}

TEST_F(MainThreadCallerTest, EmptyFunctionsAreAccepted) {
    caller.callSync({});
    const Handle handle = caller.callAsync({});
    caller.runPendingJobs();
    EXPECT_TRUE(handle->isFinished());
    const Handle waited = caller.callAsync({});
    waited->wait();
    EXPECT_TRUE(waited->isFinished());
}

TEST_F(MainThreadCallerTest, CallsRunInTheOrderInWhichTheyWereMade) {
    std::vector<int> order;
    for (int i = 0; i < 5; ++i)
        caller.callAsync([&order, i] { order.push_back(i); });
    caller.runPendingJobs();
    EXPECT_THAT(order, ElementsAre(0, 1, 2, 3, 4));
}

TEST_F(MainThreadCallerTest, EveryCallWakesTheMainThreadUp) {
    caller.callAsync(count);
    caller.callAsync(count);
    EXPECT_TRUE(caller.wakeUps.try_acquire());
    EXPECT_TRUE(caller.wakeUps.try_acquire());
    EXPECT_FALSE(caller.wakeUps.try_acquire());
}

TEST_F(MainThreadCallerTest, JobQueuedInARunningJobDoesNotRunInTheSameDrain) {
    caller.callAsync([this] { caller.callAsync(count); });
    caller.callAsync([] {});
    caller.runPendingJobs();
    EXPECT_EQ(calls, 0);
    caller.runPendingJobs();
    EXPECT_EQ(calls, 1);
}

TEST_F(MainThreadCallerTest, DrainWithinAJobRunsTheOthersAndNotTheJobAgain) {
    caller.callAsync([this] {
        ++calls;
        caller.runPendingJobs();
        EXPECT_EQ(calls, 11);
    });
    caller.callAsync([this] { calls += 10; });
    caller.runPendingJobs();
    EXPECT_EQ(calls, 11);
}

TEST_F(MainThreadCallerTest, SyncCallFromAnotherThreadReturnsAfterTheFunctionHasRunHere) {
    servedBesides([this] {
        std::thread::id where;
        caller.callSync([&] { where = std::this_thread::get_id(); });
        EXPECT_NE(where, std::this_thread::get_id());
        EXPECT_NE(where, std::thread::id());
    });
}

TEST_F(MainThreadCallerTest, ExceptionOfAJobReachesTheSyncCallerWithItsType) {
    servedBesides([this] {
        try {
            caller.callSync([] {
                Refused refused("no");
                refused.code = 42;
                throw refused;
            });
            ADD_FAILURE() << "nothing was thrown";
        } catch (const Refused& refused) {
            EXPECT_STREQ(refused.what(), "no");
            EXPECT_EQ(refused.code, 42);
        }
    });
}

TEST_F(MainThreadCallerTest, StdExceptionReachesTheSyncCallerAsExceptionWithTheSameText) {
    servedBesides([this] {
        try {
            caller.callSync([] { throw std::runtime_error("disk full"); });
            ADD_FAILURE() << "nothing was thrown";
        } catch (const Exception& exception) {
            EXPECT_STREQ(exception.what(), "disk full");
        }
    });
}

TEST_F(MainThreadCallerTest, AnythingElseReachesTheSyncCallerAsAnEmptyException) {
    servedBesides([this] {
        try {
            caller.callSync([] { throw 7; });
            ADD_FAILURE() << "nothing was thrown";
        } catch (const Exception& exception) {
            EXPECT_STREQ(exception.what(), "");
        }
    });
}

TEST_F(MainThreadCallerTest, ExceptionsOfAsyncCallsAreDropped) {
    const Handle handle = caller.callAsync([] { throw std::runtime_error("lost"); });
    caller.callAsync(count);
    EXPECT_NO_THROW(caller.runPendingJobs());
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(handle->isFinished());
}

TEST_F(MainThreadCallerTest, The10001stPendingJobLogsTheAssertionAndIsStillQueuedAndRun) {
    LogCapture log;
    for (int i = 0; i < 10000; ++i)
        caller.callAsync(count);
    EXPECT_THAT(log.lines(), IsEmpty());
    caller.callAsync(count);
    EXPECT_THAT(log.lines(), ElementsAre(assertionLine("src/Core/MainThreadCaller", 98,
                                                       "_executionJobs.size() < 10000")));
    EXPECT_THAT(log.records().at(0).stackTrace, testing::HasSubstr("callAsync"));
    caller.runPendingJobs();
    EXPECT_EQ(calls, 10001);
}

TEST_F(MainThreadCallerTest, The10001stPendingJobOfASyncCallLogsItsOwnLine) {
    for (int i = 0; i < 10000; ++i)
        caller.callAsync(count);
    while (caller.wakeUps.try_acquire())
        continue;
    LogCapture log;
    servedBesides([this] { caller.callSync(count); });
    EXPECT_THAT(log.lines(), ElementsAre(assertionLine("src/Core/MainThreadCaller", 125,
                                                       "_executionJobs.size() < 10000")));
    EXPECT_EQ(calls, 10001);
}

TEST_F(MainThreadCallerTest, LogSinkMayMakeACallWhenTheQueueIsCrowded) {
    for (int i = 0; i < 10000; ++i)
        caller.callAsync(count);
    bool inside = false;
    const auto sink = debug::setLogSink([&](const debug::LogRecord&) {
        if (!std::exchange(inside, true))
            caller.callAsync(count);
    });
    caller.callAsync(count);
    debug::setLogSink(sink);
    caller.runPendingJobs();
    EXPECT_EQ(calls, 10002);
}

TEST_F(MainThreadCallerTest, CancelBeforeTheDrainMeansThatTheJobNeverRuns) {
    const Handle handle = caller.callAsync(count);
    handle->cancel();
    EXPECT_TRUE(handle->isFinished());
    caller.runPendingJobs();
    EXPECT_EQ(calls, 0);
}

TEST_F(MainThreadCallerTest, CancelInTheMiddleKeepsTheOrderOfTheOthers) {
    std::vector<int> order;
    std::vector<Handle> handles;
    for (int i = 0; i < 5; ++i)
        handles.push_back(caller.callAsync([&order, i] { order.push_back(i); }));
    for (const int i : {0, 2, 4})
        handles[static_cast<std::size_t>(i)]->cancel();
    caller.runPendingJobs();
    EXPECT_THAT(order, ElementsAre(1, 3));
}

TEST_F(MainThreadCallerTest, CancelEndsABlockedWait) {
    const Handle handle = caller.callAsync(count);
    std::atomic<pid_t> thread = 0;
    std::jthread waiting([&] {
        thread = gettid();
        handle->wait();
    });
    ASSERT_TRUE(test::comesTrue([&] { return test::isAsleep(thread); }));
    handle->cancel();
    waiting.join();
    EXPECT_EQ(calls, 0);
}

TEST_F(MainThreadCallerTest, CancelAndWaitOfAFinishedCallDoNothing) {
    const Handle handle = caller.callAsync(count);
    caller.runPendingJobs();
    handle->cancel();
    handle->wait();
    EXPECT_EQ(calls, 1);
}

TEST_F(MainThreadCallerTest, RunningJobIsNotFinishedAndIsNotStoppedByCancel) {
    Handle handle;
    handle = caller.callAsync([&] {
        EXPECT_FALSE(handle->isFinished());
        handle->cancel();
        EXPECT_FALSE(handle->isFinished());
        ++calls;
    });
    caller.runPendingJobs();
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(handle->isFinished());
}

TEST_F(MainThreadCallerTest, WaitFromAnotherThreadReturnsAfterTheRun) {
    const Handle handle = caller.callAsync(count);
    std::jthread waiting([&] {
        handle->wait();
        EXPECT_EQ(calls, 1);
    });
    caller.runPendingJobs();
}

TEST_F(MainThreadCallerTest, WaitOnTheMainThreadRunsTheFunctionThereAndThen) {
    const Handle first = caller.callAsync([this] { calls += 10; });
    const Handle second = caller.callAsync(count);
    second->wait();
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(second->isFinished());
    EXPECT_FALSE(first->isFinished());
    caller.runPendingJobs();
    EXPECT_EQ(calls, 11);
}

TEST_F(MainThreadCallerTest, WaitOnTheMainThreadLetsExceptionsThroughAndDoesNotRunAgain) {
    const Handle handle = caller.callAsync([this] {
        ++calls;
        throw std::out_of_range("far");
    });
    EXPECT_THROW(handle->wait(), std::out_of_range);
    caller.runPendingJobs();
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(handle->isFinished());
}

TEST_F(MainThreadCallerTest, WaitOnTheMainThreadEndsTheWaitOfOtherThreads) {
    const Handle handle = caller.callAsync(count);
    std::jthread waiting([&] { handle->wait(); });
    handle->wait();
    waiting.join();
    EXPECT_EQ(calls, 1);
}

TEST_F(MainThreadCallerTest, JobThatWaitsForItselfGoesOn) {
    Handle handle;
    handle = caller.callAsync([&] {
        handle->wait();
        ++calls;
    });
    caller.runPendingJobs();
    EXPECT_EQ(calls, 1);
}

TEST_F(MainThreadCallerTest, CancelAllJobsLetsSyncCallersReturnWithoutTheirRun) {
    std::jthread blocked([this] { caller.callSync(count); });
    caller.wakeUps.acquire();
    const Handle handle = caller.callAsync(count);
    caller.cancelAllJobs();
    blocked.join();
    EXPECT_TRUE(handle->isFinished());
    caller.runPendingJobs();
    EXPECT_EQ(calls, 0);
}

TEST_F(MainThreadCallerTest, ProcessJobsRunsWhatIsPending) {
    LogCapture log;
    caller.callAsync(count);
    caller.processJobs();
    EXPECT_EQ(calls, 1);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(MainThreadCallerTest, ProcessJobsElsewhereLogsTheAssertionAndRunsNothing) {
    LogCapture log;
    caller.callAsync(count);
    std::jthread([this] { caller.processJobs(); }).join();
    EXPECT_EQ(calls, 0);
    EXPECT_THAT(log.lines(), ElementsAre(assertionLine("MainThreadCaller", 82, "isMainThread()")));
}

TEST_F(MainThreadCallerTest, DrainElsewhereLogsTheAssertionAndGoesOn) {
    LogCapture log;
    caller.callAsync(count);
    std::jthread([this] { caller.runPendingJobs(); }).join();
    EXPECT_EQ(calls, 1);
    EXPECT_THAT(log.lines(),
                ElementsAre(assertionLine("src/Core/MainThreadCaller", 142, "isMainThread()")));
}

TEST_F(MainThreadCallerTest, FunctionIsReleasedWithItsJob) {
    const auto held = std::make_shared<int>(0);
    const Handle handle = caller.callAsync([held] {});
    EXPECT_EQ(held.use_count(), 2);
    caller.runPendingJobs();
    EXPECT_EQ(held.use_count(), 1);
    caller.callAsync([held] {})->cancel();
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(MainThreadCallerTest, HandleDoesNotKeepTheCallAliveNorTheOtherWayRound) {
    caller.callAsync(count);
    Handle handle = caller.callAsync(count);
    const Handle copy = handle;
    handle.reset();
    caller.runPendingJobs();
    EXPECT_EQ(calls, 2);
    EXPECT_TRUE(copy->isFinished());
}

TEST(MainThreadCallerEnd, HandleOfADestroyedCallerIsFinishedAndDoesNothing) {
    Handle handle;
    {
        TestCaller caller;
        handle = caller.callAsync([] { ADD_FAILURE(); });
    }
    EXPECT_TRUE(handle->isFinished());
    handle->wait();
    handle->cancel();
}

TEST(MainThreadCallerEnd, DestructionLetsWaitingThreadsReturn) {
    auto caller = std::make_unique<TestCaller>();
    const Handle handle = caller->callAsync([] { ADD_FAILURE(); });
    std::jthread waiting([&] { handle->wait(); });
    caller.reset();
}

}  // namespace
}  // namespace tav::ula
