// SPDX-License-Identifier: MIT
#include "ula/foundation/debug/Log.h"

#include "tests/support/LogCapture.h"
#include "ula/foundation/debug/Assertion.h"

#include <gmock/gmock.h>
#include <stdexcept>
#include <thread>

namespace tav::debug {
namespace {

using test::LogCapture;

TEST(LogTest, ALineReachesTheSinkAtTheEndOfTheStatement) {
    LogCapture log;
    logf("src/Some/Place", 12, LogLevelError, "%* of %*").add("1").add("2");
    const auto records = log.records();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].source, "src/Some/Place");
    EXPECT_EQ(records[0].line, 12);
    EXPECT_EQ(records[0].level, 4);
    EXPECT_EQ(records[0].text, "1 of 2");
    EXPECT_EQ(records[0].stackTrace, "");
}

TEST(LogTest, TheSinkGetsEveryLevel) {
    LogCapture log;
    logf("a", 1, LogLevelTrace, "trace");
    logf(nullptr, 0, LogLevelUnrecognised, nullptr);
    EXPECT_THAT(log.lines(), testing::ElementsAre("1 a:1 trace", "2 :0 "));
}

TEST(LogTest, AnAssertionHasItsMessageAndATrace) {
    LogCapture log;
    assertionFailed("src/Some/Place", 7, "a == b");
    const auto records = log.records();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].text, "assertion failed src/Some/Place:7\"a == b\"");
    EXPECT_EQ(records[0].source, "");
    EXPECT_EQ(records[0].line, 0);
    EXPECT_EQ(records[0].level, 4);
    EXPECT_THAT(records[0].stackTrace, testing::HasSubstr("assertionFailed"));
}

TEST(LogTest, SetLogSinkReturnsTheEarlierSink) {
    int first = 0, second = 0;
    const LogSink original = setLogSink([&](const LogRecord&) { ++first; });
    const LogSink earlier = setLogSink([&](const LogRecord&) { ++second; });
    ASSERT_TRUE(earlier);
    earlier({});
    logf("a", 1, LogLevelError, "line");
    setLogSink(original);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 1);
}

TEST(LogTest, WhatASinkThrowsIsDropped) {
    const LogSink original = setLogSink([](const LogRecord&) { throw std::runtime_error("no"); });
    logf("a", 1, LogLevelError, "line");
    log_with_stacktrace("message");
    setLogSink(original);
    SUCCEED();
}

TEST(LogTest, TheDefaultWritesToStandardErrorFromLevelTwoOn) {
    const LogSink original = setLogSink({});
    testing::internal::CaptureStderr();
    logf("src/Place", 3, LogLevelTrace, "quiet");
    logf("src/Place", 3, LogLevelUnrecognised, "loud");
    const std::string output = testing::internal::GetCapturedStderr();
    setLogSink(original);
    EXPECT_EQ(output, "src/Place:3: loud\n");
}

TEST(LogTest, ThreadsMayLogWhileTheSinkChanges) {
    const LogSink original = setLogSink([](const LogRecord&) {});
    std::thread logger([] {
        for (int i = 0; i < 2000; ++i)
            logf("a", i, LogLevelTrace, "line");
    });
    for (int i = 0; i < 200; ++i)
        setLogSink([](const LogRecord&) {});
    logger.join();
    setLogSink(original);
}

}  // namespace
}  // namespace tav::debug
