// SPDX-License-Identifier: MIT
// Calls onto the main thread, many at once and against its end.
#include "tests/Core/TestCaller.h"
#include "tests/support/LogCapture.h"
#include "ula/foundation/Exception.h"

#include <CoreFoundation/CoreFoundation.h>
#include <barrier>
#include <cstdlib>
#include <gtest/gtest.h>
#include <malloc.h>
#include <memory>
#include <random>
#include <thread>

namespace tav::ula {

namespace {

using Handle = util::SharedPtr<CallHandle>;

constexpr int kThreads = 16;

class Numbered : public CloneableException<Numbered> {
public:
    explicit Numbered(int theNumber) : number(theNumber) {}
    int number;
};

/// What has become of each call.
struct Record {
    explicit Record(std::size_t count) : runs(count), cancelled(count) {}

    std::vector<std::atomic<std::uint8_t>> runs;
    std::vector<std::atomic<bool>> cancelled;
};

/// One thread's part of the calls: each is left alone, waited for, cancelled, made synchronously or
/// throws, as chance has it.
class Worker {
public:
    Worker(Record& record, std::size_t first, std::size_t count)
        : _record(record),
          _first(first),
          _end(first + count),
          _random(static_cast<unsigned>(first)) {}

    void work() {
        for (std::size_t call = _first; call < _end; ++call) {
            // A bounded number of pending calls: beyond 10,000 each would be logged.
            const bool isLastOfBatch = call % 256 == 255;
            perform(call, isLastOfBatch ? 99 : static_cast<int>(_random() % 100));
        }
    }

private:
    void perform(std::size_t call, int kind) {
        if (kind < 80)
            queue(call);
        else if (kind < 94)
            cancel(call);
        else if (kind < 96)
            callSync(call);
        else if (kind < 98)
            callThrowing(call);
        else
            queue(call)->wait();
    }

    Handle queue(std::size_t call) {
        return caller().callAsync([&record = _record, call] { ++record.runs[call]; });
    }
    void cancel(std::size_t call) {
        queue(call)->cancel();
        _record.cancelled[call] = true;
    }
    void callSync(std::size_t call) {
        caller().callSync([&] { ++_record.runs[call]; });
        EXPECT_EQ(_record.runs[call], 1);
    }
    void callThrowing(std::size_t call) {
        try {
            caller().callSync([&] {
                ++_record.runs[call];
                throw Numbered(static_cast<int>(call));
            });
            ADD_FAILURE() << "nothing was thrown";
        } catch (const Numbered& exception) {
            EXPECT_EQ(exception.number, static_cast<int>(call));
        }
    }

    static MainThreadCaller& caller() { return *MainThreadCaller::instance(); }

    Record& _record;
    std::size_t _first;
    std::size_t _end;
    std::minstd_rand _random;
};

/// ULA_CALLS=10000000 takes a minute; fewer do for every day.
std::size_t callsOfAThread() {
    const char* const wanted = std::getenv("ULA_CALLS");
    const std::size_t calls = wanted ? std::strtoull(wanted, nullptr, 10) : 2'000'000;
    return calls / kThreads / ULA_ROUNDS_DIVISOR;
}

std::size_t allocatedBytes() {
    return mallinfo2().uordblks + mallinfo2().hblkhd;
}

}  // namespace

TEST(MainThreadCalls, EachRunsExactlyOnceOrIsCancelled) {
    const std::size_t calls = callsOfAThread();
    Record record(calls * kThreads);
    MainThreadCaller::instance();
    std::atomic<int> working = kThreads;
    std::vector<std::jthread> threads;
    for (std::size_t i = 0; i < kThreads; ++i)
        threads.emplace_back([&, i] {
            Worker(record, i * calls, calls).work();
            if (--working == 0)
                MainThreadCaller::instance()->callSync([] { CFRunLoopStop(CFRunLoopGetMain()); });
        });
    CFRunLoopRun();
    threads.clear();
    MainThreadCaller::destroyInstance();

    std::size_t cancelled = 0;
    for (std::size_t call = 0; call < record.runs.size(); ++call) {
        ASSERT_LE(record.runs[call], 1) << call;
        ASSERT_TRUE(record.runs[call] == 1 || record.cancelled[call]) << call;
        cancelled += record.runs[call] == 0;
    }
    std::printf("%zu calls, %zu of them cancelled in time\n", record.runs.size(), cancelled);
    // Otherwise cancelling has not been tested.
    EXPECT_GT(cancelled, 0u);
}

TEST(MainThreadCalls, DestroyedCallerLetsBlockedSyncCallersReturn) {
    constexpr int kRounds = 10'000 / ULA_ROUNDS_DIVISOR;
    constexpr int kBlocked = 4;
    std::unique_ptr<TestCaller> caller;
    std::barrier<> step(kBlocked + 1);
    std::vector<std::jthread> threads;
    for (int i = 0; i < kBlocked; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < kRounds; ++round) {
                step.arrive_and_wait();
                caller->callSync([] { ADD_FAILURE() << "a cancelled call ran"; });
                step.arrive_and_wait();
            }
        });
    for (int round = 0; round < kRounds; ++round) {
        caller = std::make_unique<TestCaller>();
        step.arrive_and_wait();
        for (int i = 0; i < kBlocked; ++i)
            caller->wakeUps.acquire();
        caller.reset();
        step.arrive_and_wait();
    }
}

TEST(MainThreadCalls, DestroyInstanceLetsWaitingThreadsReturn) {
    constexpr int kRounds = 10'000 / ULA_ROUNDS_DIVISOR;
    constexpr int kWaiting = 4;
    std::barrier<> step(kWaiting + 1);
    std::vector<std::jthread> threads;
    for (int i = 0; i < kWaiting; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < kRounds; ++round) {
                step.arrive_and_wait();
                const Handle handle = MainThreadCaller::instance()->callAsync(
                    [] { ADD_FAILURE() << "a cancelled call ran"; });
                step.arrive_and_wait();
                handle->wait();
                handle->cancel();
                step.arrive_and_wait();
                EXPECT_TRUE(handle->isFinished());
            }
        });
    for (int round = 0; round < kRounds; ++round) {
        MainThreadCaller::instance();
        step.arrive_and_wait();
        step.arrive_and_wait();
        MainThreadCaller::destroyInstance();
        step.arrive_and_wait();
    }
}

TEST(MainThreadCalls, AMillionPendingOnesTakeBoundedMemoryAndAreReported) {
    constexpr std::size_t kPending = 1'000'000 / ULA_ROUNDS_DIVISOR;
    constexpr std::size_t kKeptForLaterCalls = 4096 * 256;
    std::size_t reports = 0, runs = 0;
    const auto previous = debug::setLogSink([&](const debug::LogRecord&) { ++reports; });
    {
        TestCaller caller;
        // The first report reads the symbols of the program, and keeps them.
        log_with_stacktrace("");
        reports = 0;
        const std::size_t before = allocatedBytes();
        for (std::size_t i = 0; i < kPending; ++i)
            caller.callAsync([&runs] { ++runs; });
        const std::size_t bytes = (allocatedBytes() - before) / kPending;
        std::printf("%zu bytes for each pending call, %zu reports\n", bytes, reports);
        if (!ULA_IS_SANITIZED)
            EXPECT_LE(bytes, 256u);
        EXPECT_EQ(reports, kPending - 10'000);
        caller.runPendingJobs();
        EXPECT_EQ(runs, kPending);
        if (!ULA_IS_SANITIZED)
            EXPECT_LE(allocatedBytes(), before + kPending + kKeptForLaterCalls);
    }
    debug::setLogSink(previous);
}

}  // namespace tav::ula
