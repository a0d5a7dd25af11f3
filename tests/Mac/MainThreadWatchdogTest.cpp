// SPDX-License-Identifier: MIT
#include "ula/MainThreadWatchdog.h"

#include "tests/support/LogCapture.h"
#include "ula/MainThreadCaller.h"

#include <CoreFoundation/CoreFoundation.h>
#include <future>
#include <gmock/gmock.h>
#include <thread>

namespace {

/// Its name is looked for in the stack.
__attribute__((noinline)) void blockTheMainThread() {
    std::this_thread::sleep_for(std::chrono::milliseconds(400));
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
        while (log.records().size() < lines)
            CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.02, true);
    }
};

TEST_F(MainThreadWatchdogTest, LogsABlockWithTheStackOfTheMainThreadAndItsEnd) {
    const LogCapture log;
    const MainThreadWatchdog watchdog(milliseconds(100));
    blockTheMainThread();
    runUntilLogged(log, 2);
    const auto lines = log.lines();
    EXPECT_EQ(lines[0], "4 :0 main thread blocked for more than 100 ms");
    EXPECT_THAT(log.records()[0].stackTrace, HasSubstr("blockTheMainThread"));
    EXPECT_THAT(lines[1], MatchesRegex("3 src/Core/MainThreadWatchdog:1 "
                                       "main thread was blocked for [0-9]+ ms"));
}

TEST_F(MainThreadWatchdogTest, IsSilentWhileTheLoopRuns) {
    const LogCapture log;
    const MainThreadWatchdog watchdog(milliseconds(500));
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 2, false);
    EXPECT_THAT(log.lines(), IsEmpty());
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
