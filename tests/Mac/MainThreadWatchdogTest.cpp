// SPDX-License-Identifier: MIT
#include "ula/MainThreadWatchdog.h"

#include "tests/support/LogCapture.h"
#include "tests/support/Patience.h"
#include "ula/MainThreadCaller.h"
#include "ula/NativeTimer.h"

#include <CoreFoundation/CoreFoundation.h>
#include <algorithm>
#include <future>
#include <gmock/gmock.h>
#include <memory>
#include <thread>

namespace {

/// Until that was logged. Its name is looked for in the stack.
__attribute__((noinline)) void blockTheMainThread(const tav::test::LogCapture& log) {
    EXPECT_TRUE(tav::test::comesTrue([&] { return !log.records().empty(); }));
    // Keeps the call from being the function's last act, which would drop its frame.
    asm volatile("");
}

}  // namespace

namespace tav::ula {
namespace {

using std::chrono::milliseconds;
using test::LogCapture;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;

class MainThreadWatchdogTest : public testing::Test {
protected:
    MainThreadWatchdogTest() { MainThreadCaller::instance(); }
    ~MainThreadWatchdogTest() override { MainThreadCaller::destroyInstance(); }

    /// Runs the loop until that many lines were logged.
    static void runUntilLogged(const LogCapture& log, std::size_t lines) {
        const auto end = std::chrono::steady_clock::now() + test::kPatience;
        while (log.records().size() < lines && std::chrono::steady_clock::now() < end)
            CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.02, true);
    }
    /// Runs the loop for a while. Gives the longest time in which it did nothing.
    static milliseconds runAndMeasure() {
        using Clock = std::chrono::steady_clock;
        Clock::time_point last = Clock::now();
        Clock::duration longest{};
        const auto look = [&] {
            const Clock::time_point now = Clock::now();
            longest = std::max(longest, now - last);
            last = now;
        };
        const std::unique_ptr<NativeTimer> timer(NativeTimer::createTimer(50, look));
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1.2, false);
        look();
        return std::chrono::duration_cast<milliseconds>(longest);
    }
};

TEST_F(MainThreadWatchdogTest, LogsABlockWithTheStackOfTheMainThreadAndItsEnd) {
    const LogCapture log;
    const MainThreadWatchdog watchdog(milliseconds(100));
    blockTheMainThread(log);
    runUntilLogged(log, 2);
    const auto lines = log.lines();
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[0], "4 :0 main thread blocked for more than 100 ms");
    EXPECT_THAT(log.records()[0].stackTrace, HasSubstr("blockTheMainThread"));
    EXPECT_THAT(lines[1], MatchesRegex("3 src/Core/MainThreadWatchdog:1 "
                                       "main thread was blocked for [0-9]+ ms"));
}

TEST_F(MainThreadWatchdogTest, IsSilentWhileTheLoopRuns) {
    // A machine that halts blocks the thread, too: such a run says nothing.
    for (int attempt = 0; attempt < 50; ++attempt) {
        const LogCapture log;
        const MainThreadWatchdog watchdog(milliseconds(500));
        if (runAndMeasure() > milliseconds(250))
            continue;
        EXPECT_THAT(log.lines(), IsEmpty());
        return;
    }
    FAIL() << "this machine halts all the time";
}

TEST_F(MainThreadWatchdogTest, LongestLimitThereIsNeverReports) {
    const LogCapture log;
    const MainThreadWatchdog watchdog(milliseconds::max());
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.2, false);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(MainThreadWatchdogTest, EndsAtOnceWhileTheMainThreadIsBlocked) {
    std::promise<std::string> logged;
    const auto previous =
        debug::setLogSink([&](const debug::LogRecord& record) { logged.set_value(record.text); });
    {
        const MainThreadWatchdog watchdog(milliseconds(1));
        EXPECT_EQ(logged.get_future().get(), "main thread blocked for more than 1 ms");
    }
    debug::setLogSink(previous);
}

}  // namespace
}  // namespace tav::ula
