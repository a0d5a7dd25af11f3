// SPDX-License-Identifier: MIT
#include "CoreServices/Patience.h"
#include "CoreServices/RunProgram.h"

#include "tests/support/ChildProcess.h"

#include <csignal>
#include <future>
#include <sys/resource.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

using namespace coreservices;
using namespace std::chrono_literals;

constexpr auto kForEver = 60s;

TEST(Patience, GivesTheAnswer) {
    EXPECT_EQ(askPatiently<int>("place", kForEver, [] { return 42; }), 42);
    EXPECT_TRUE(runPatiently("place", kForEver, [] {}));
}

// Tells when all that knew it is gone.
struct Token {
    std::promise<void> gone;
    ~Token() { gone.set_value(); }
};

TEST(Patience, EndsAndIsNotTriedAgainUntilTheAnswerComes) {
    auto release = std::make_shared<std::promise<void>>();
    auto token = std::make_shared<Token>();
    auto gone = token->gone.get_future();
    auto released = release->get_future().share();
    auto wait = [released, token = std::move(token)] { released.wait(); };
    EXPECT_FALSE(runPatiently("slow", 20ms, std::move(wait)));
    bool begun = false;
    EXPECT_FALSE(runPatiently("slow", kForEver, [&] { begun = true; }));
    EXPECT_FALSE(begun);
    EXPECT_TRUE(runPatiently("other", kForEver, [] {}));
    release->set_value();
    gone.wait();
    EXPECT_TRUE(runPatiently("slow", kForEver, [] {}));
}

TEST(Patience, AForkedChildAsksAnewWhereItsParentIsLeftWaiting) {
    std::promise<void> release;
    auto released = release.get_future().share();
    EXPECT_FALSE(runPatiently("slow", 20ms, [released] { released.wait(); }));
    tav::test::ChildProcess child([] { _exit(runPatiently("slow", kForEver, [] {}) ? 0 : 1); });
    EXPECT_EQ(child.wait(), 0);
    EXPECT_FALSE(runPatiently("slow", kForEver, [] {}));
    release.set_value();
}

TEST(Patience, TheThreadThatAsksTakesNoSignals) {
    EXPECT_EQ(askPatiently<bool>("place", kForEver,
                                 [] {
                                     sigset_t blocked;
                                     pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
                                     return sigismember(&blocked, SIGUSR1) == 1 &&
                                            sigismember(&blocked, SIGCHLD) == 1;
                                 }),
              true);
}

// Makes no more threads for the process, by a limit that is its user's.
void forbidThreads() {
    const rlimit none = {0, 0};
    if (setrlimit(RLIMIT_NPROC, &none) != 0 || setresuid(65534, 65534, 65534) != 0)
        _exit(2);
}

TEST(Patience, AsksNobodyWhereNoThreadCanBeMade) {
    tav::test::ChildProcess child([] {
        forbidThreads();
        _exit(runPatiently("place", kForEver, [] {}) ? 1 : 0);
    });
    EXPECT_EQ(child.wait(), 0);
}

TEST(RunProgram, TellsHowItEnded) {
    EXPECT_TRUE(runProgram({"true"}, kForEver));
    EXPECT_FALSE(runProgram({"false"}, kForEver));
    EXPECT_FALSE(runProgram({"no-such-program-anywhere"}, kForEver));
}

TEST(RunProgram, EndsWhatTakesTooLong) {
    auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(runProgram({"sleep", "1000"}, 20ms));
    EXPECT_LT(std::chrono::steady_clock::now() - start, kForEver);
}

}  // namespace
