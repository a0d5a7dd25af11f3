// SPDX-License-Identifier: MIT
#include "ula/foundation/thread/Thread.h"

#include "ula/foundation/Exception.h"
#include "ula/foundation/debug/Log.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <pthread.h>
#include <sched.h>
#include <unistd.h>

namespace tav::thread {

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kSource = "thread/Thread";
/// Longer sleeps than the clock can add up to are cut to this.
constexpr double kLongestSleepSeconds = 100.0 * 365 * 24 * 3600;

Clock::time_point deadlineAfter(double seconds) {
    const double bounded = seconds > 0 ? std::min(seconds, kLongestSleepSeconds) : 0;
    return Clock::now() +
           std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(bounded));
}

void runLogged(const util::Function0<void>& function) {
    try {
        if (function)
            function();
    } catch (const ThreadInterruptedException&) {
        // The way an interrupted thread is meant to end.
    } catch (...) {
        debug::logf(kSource, 41, debug::LogLevelError, "a thread ended with an exception: %*")
            .add(describeCurrentException());
    }
}

}  // namespace

/// The mark that a thread of the class looks for while it sleeps.
struct Thread::Interruption {
    std::mutex mutex;
    std::condition_variable changed;
    bool requested = false;

    /// Of the calling thread; null in threads that are not of this class.
    static thread_local Interruption* current;

    void request() {
        {
            std::lock_guard lock(mutex);
            requested = true;
        }
        changed.notify_all();
    }
    void sleepUntil(Clock::time_point deadline) {
        std::unique_lock lock(mutex);
        if (!changed.wait_until(lock, deadline, [this] { return requested; }))
            return;
        requested = false;
        throw ThreadInterruptedException();
    }
};

thread_local Thread::Interruption* Thread::Interruption::current = nullptr;

ThreadInterruptedException::~ThreadInterruptedException() = default;

Thread::Thread(const util::Function0<void>& function)
    : _interruption(std::make_shared<Interruption>()),
      _thread([function, interruption = _interruption] {
          Interruption::current = interruption.get();
          runLogged(function);
      }) {
}

Thread::~Thread() {
    if (!_thread.joinable())
        return;
    interrupt();
    join();
}

void Thread::join() {
    if (_thread.joinable())
        _thread.join();
}

void Thread::detach() {
    if (_thread.joinable())
        _thread.detach();
}

void Thread::interrupt() {
    _interruption->request();
}

void Thread::sleep(double seconds) {
    const auto deadline = deadlineAfter(seconds);
    if (Interruption* interruption = Interruption::current)
        interruption->sleepUntil(deadline);
    else
        std::this_thread::sleep_until(deadline);
}

namespace {

thread_local std::uint32_t cachedThreadId = 0;

/// A forked child's only thread has a new identifier.
void forgetThreadIdInChild() {
    cachedThreadId = 0;
}

}  // namespace

std::uint32_t getThreadId() {
    static const int registered = pthread_atfork(nullptr, nullptr, forgetThreadIdInChild);
    static_cast<void>(registered);
    if (cachedThreadId == 0)
        cachedThreadId = static_cast<std::uint32_t>(gettid());
    return cachedThreadId;
}

void yield() {
    sched_yield();
}

}  // namespace tav::thread
