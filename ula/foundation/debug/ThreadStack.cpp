// SPDX-License-Identifier: MIT
#include "ula/foundation/debug/StackTrace.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <execinfo.h>
#include <mutex>
#include <semaphore.h>

namespace tav::debug {

namespace {

constexpr int kMostFrames = 64;

/// What the thread that asks and the signal handler of the thread that is asked share.
struct Exchange {
    static constexpr std::uintptr_t kIdle = 0;
    static constexpr std::uintptr_t kAnswering = 1;

    Exchange() {
        sem_init(&answered, 0, 0);
        // Loads the unwinder now: a signal handler must not.
        void* frame = nullptr;
        backtrace(&frame, 1);
    }

    std::mutex oneAtATime;
    /// Otherwise the thread that is asked: the answer of another one, which comes too late for a
    /// request that was given up, is not taken for that one's.
    std::atomic<std::uintptr_t> state = kIdle;
    sem_t answered;
    void* frames[kMostFrames];
    int count = 0;
};

// A number or a pointer, as the system has it.
std::uintptr_t numberOf(pthread_t thread) {
    return (std::uintptr_t)thread;
}

/// Never destroyed: a late answer may come at the very end of the process.
Exchange& theExchange() {
    static auto* const exchange = new Exchange;
    return *exchange;
}

extern "C" void answerWithStack(int) {
    const int savedError = errno;
    Exchange& exchange = theExchange();
    std::uintptr_t asked = numberOf(pthread_self());
    // An answer that comes too late is not wanted any more.
    if (exchange.state.compare_exchange_strong(asked, Exchange::kAnswering)) {
        exchange.count = backtrace(exchange.frames, kMostFrames);
        sem_post(&exchange.answered);
    }
    errno = savedError;
}

/// The number of a signal that ends in `answerWithStack`; 0 when none is free.
int installedSignal() {
    constexpr int kTried = 8;
    for (int number = SIGRTMAX; number > SIGRTMAX - kTried; --number) {
        struct sigaction present {};
        if (sigaction(number, nullptr, &present) != 0 || present.sa_handler != SIG_DFL)
            continue;
        struct sigaction ours {};
        ours.sa_handler = answerWithStack;
        ours.sa_flags = SA_RESTART;
        if (sigaction(number, &ours, nullptr) == 0)
            return number;
    }
    return 0;
}

bool waitForAnswer(sem_t& answered) {
    timespec deadline{};
    clock_gettime(CLOCK_REALTIME, &deadline);
    ++deadline.tv_sec;
    int result = 0;
    do {
        result = sem_timedwait(&answered, &deadline);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

void waitForAnswerBegun(sem_t& answered) {
    while (sem_wait(&answered) != 0)
        continue;
}

}  // namespace

StackTrace StackTrace::captureOf(pthread_t thread) {
    static_assert(kMostFrames == kDeepest);
    StackTrace trace;
    Exchange& exchange = theExchange();
    const std::lock_guard guard(exchange.oneAtATime);
    static const int signal = installedSignal();
    if (signal == 0)
        return trace;
    std::uintptr_t asked = numberOf(thread);
    exchange.state = asked;
    if (pthread_kill(thread, signal) != 0 || !waitForAnswer(exchange.answered)) {
        if (exchange.state.compare_exchange_strong(asked, Exchange::kIdle))
            return trace;
        waitForAnswerBegun(exchange.answered);
    }
    exchange.state = Exchange::kIdle;
    trace._count = static_cast<std::size_t>(exchange.count);
    std::copy_n(exchange.frames, trace._count, trace._frames.begin());
    return trace;
}

}  // namespace tav::debug
