// SPDX-License-Identifier: MIT
#include "ula/foundation/debug/StackTrace.h"

#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>

namespace {

/// Not exported: only symbol tables and debug information know its name.
__attribute__((noinline)) void functionOfThisFile(const char* message) {
    tav::log_with_stacktrace(message);
    // Keeps the call from being the function's last act, which would drop its frame.
    asm volatile("");
}

}  // namespace

namespace tav::debug {
namespace {

TEST(StackTraceTest, NamesFunctionsFilesAndLinesOfThisProgram) {
    test::LogCapture log;
    functionOfThisFile("message");
    const auto records = log.records();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].text, "message");
    EXPECT_THAT(records[0].stackTrace, testing::HasSubstr("functionOfThisFile"));
    EXPECT_THAT(records[0].stackTrace, testing::HasSubstr("StackTraceTest.cpp:"));
    EXPECT_THAT(records[0].stackTrace, testing::HasSubstr("main"));
}

TEST(StackTraceTest, ANullMessageIsEmpty) {
    test::LogCapture log;
    log_with_stacktrace(nullptr);
    EXPECT_THAT(log.lines(), testing::ElementsAre("4 :0 "));
}

TEST(StackTraceTest, EachFrameIsALine) {
    const std::string text = StackTrace::capture().toString();
    EXPECT_THAT(text, testing::StartsWith("  #0 "));
    EXPECT_THAT(text, testing::HasSubstr("\n  #1 "));
    EXPECT_EQ(text.back(), '\n');
}

}  // namespace
}  // namespace tav::debug
