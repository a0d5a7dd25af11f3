// SPDX-License-Identifier: MIT
#include "ula/foundation/debug/StackTrace.h"

#include "tests/support/LogCapture.h"

#include <atomic>
#include <csignal>
#include <gmock/gmock.h>
#include <thread>

namespace {

/// Not exported: only symbol tables and debug information know its name.
__attribute__((noinline)) void functionOfThisFile(const char* message) {
    tav::log_with_stacktrace(message);
    // Keeps the call from being the function's last act, which would drop its frame.
    asm volatile("");
}

using Flag = std::atomic<bool>;

void waitFor(const Flag& flag) {
    while (!flag)
        std::this_thread::yield();
}

void setSignals(int how) {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(how, &all, nullptr);
}

bool isSignalPending() {
    sigset_t pending;
    sigemptyset(&pending);
    sigpending(&pending);
    for (int number = SIGRTMIN; number <= SIGRTMAX; ++number)
        if (sigismember(&pending, number) == 1)
            return true;
    return false;
}

/// Answers nobody until it is told to.
__attribute__((noinline)) void answerLate(const Flag& mayAnswer, Flag& hasAnswered) {
    waitFor(mayAnswer);
    setSignals(SIG_UNBLOCK);
    hasAnswered = true;
}

/// Answers when the other one has.
__attribute__((noinline)) void answerAfter(Flag& mayAnswer, const Flag& hasAnswered) {
    while (!isSignalPending())
        std::this_thread::yield();
    mayAnswer = true;
    waitFor(hasAnswered);
    setSignals(SIG_UNBLOCK);
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

TEST(StackTraceTest, AnAnswerThatComesTooLateIsNotTakenForTheNextThreads) {
    Flag mayAnswer = false, hasAnswered = false;
    setSignals(SIG_BLOCK);
    std::thread late([&] { answerLate(mayAnswer, hasAnswered); });
    std::thread next([&] { answerAfter(mayAnswer, hasAnswered); });
    setSignals(SIG_UNBLOCK);
    EXPECT_TRUE(StackTrace::captureOf(late.native_handle()).empty());
    const std::string text = StackTrace::captureOf(next.native_handle()).toString();
    late.join();
    next.join();
    EXPECT_THAT(text, testing::HasSubstr("answerAfter"));
    EXPECT_THAT(text, testing::Not(testing::HasSubstr("answerLate")));
}

}  // namespace
}  // namespace tav::debug
