// SPDX-License-Identifier: MIT
#include "CoreServices/FSEvents/KernelWatches.h"

#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/time.h>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// What an application's own timer does to the calls of its threads.
class SignalsEveryMillisecond {
public:
    SignalsEveryMillisecond() {
        struct sigaction action {};
        action.sa_handler = [](int) {};
        sigaction(SIGALRM, &action, nullptr);
        const itimerval often = {{0, 1000}, {0, 1000}};
        setitimer(ITIMER_REAL, &often, nullptr);
    }
    ~SignalsEveryMillisecond() {
        const itimerval never{};
        setitimer(ITIMER_REAL, &never, nullptr);
    }
    SignalsEveryMillisecond(const SignalsEveryMillisecond&) = delete;
    SignalsEveryMillisecond& operator=(const SignalsEveryMillisecond&) = delete;
};

TEST(KernelWatches, WaitTheirTimeWhateverSignalsCome) {
    const auto watches = fsevents::KernelWatches::open();
    ASSERT_NE(watches, nullptr);
    const SignalsEveryMillisecond signals;
    const Clock::time_point start = Clock::now();
    watches->waitAndCollect(50);
    EXPECT_GE(Clock::now() - start, 50ms);
    EXPECT_TRUE(watches->isEmpty());
}

}  // namespace
