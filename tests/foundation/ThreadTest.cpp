// SPDX-License-Identifier: MIT
#include "ula/foundation/thread/Thread.h"

#include "tests/support/LogCapture.h"
#include "ula/foundation/thread/Atomic.h"
#include "ula/foundation/thread/ConditionVariable.h"
#include "ula/foundation/thread/ScratchPad.h"

#include <atomic>
#include <chrono>
#include <future>
#include <gmock/gmock.h>
#include <limits>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace tav::thread {
namespace {

using Clock = std::chrono::steady_clock;

TEST(ThreadTest, JoinWaitsForTheFunction) {
    int result = 0;
    Thread thread([&] { result = 7; });
    thread.join();
    thread.join();
    EXPECT_EQ(result, 7);
}

TEST(ThreadTest, DetachedThreadOutlivesItsObjectWhichItMayDelete) {
    std::promise<void> deleted;
    std::promise<Thread*> made;
    auto* const thread = new Thread([&] {
        Thread* const self = made.get_future().get();
        self->detach();
        delete self;
        deleted.set_value();
    });
    made.set_value(thread);
    deleted.get_future().get();
}

TEST(ThreadTest, InterruptEndsAPendingSleep) {
    std::atomic<bool> interrupted = false;
    std::atomic<bool> started = false;
    Thread thread([&] {
        started = true;
        started.notify_all();
        try {
            Thread::sleep(600);
        } catch (const ThreadInterruptedException&) {
            interrupted = true;
        }
    });
    started.wait(false);
    thread.interrupt();
    thread.join();
    EXPECT_TRUE(interrupted);
}

TEST(ThreadTest, InterruptEndsALaterSleepOnce) {
    Mutex mutex;
    ConditionVariable changed;
    bool isInterrupted = false;
    int caught = 0;
    Thread thread([&] {
        {
            ScopedLock<Mutex> lock(mutex);
            while (!isInterrupted)
                changed.wait(lock);
        }
        for (int i = 0; i < 2; ++i) {
            try {
                Thread::sleep(0);
            } catch (const ThreadInterruptedException&) {
                ++caught;
            }
        }
    });
    thread.interrupt();
    {
        const ScopedLock<Mutex> lock(mutex);
        isInterrupted = true;
    }
    changed.notify_one();
    thread.join();
    EXPECT_EQ(caught, 1);
}

TEST(ThreadTest, TheDestructorInterruptsAndJoins) {
    std::atomic<bool> ended = false;
    {
        const Thread thread([&] {
            try {
                Thread::sleep(600);
            } catch (...) {
                ended = true;
                throw;
            }
        });
    }
    EXPECT_TRUE(ended);
}

TEST(ThreadTest, SleepLastsAtLeastItsTimeAndTakesAnyNumber) {
    const auto begin = Clock::now();
    Thread::sleep(0.02);
    EXPECT_GE(Clock::now() - begin, std::chrono::milliseconds(20));
    Thread::sleep(-1);
    Thread::sleep(std::numeric_limits<double>::quiet_NaN());
    Thread thread([] { Thread::sleep(std::numeric_limits<double>::infinity()); });
    thread.interrupt();
    thread.join();
}

TEST(ThreadTest, WhatAFunctionThrowsIsLoggedAndAnInterruptionIsNot) {
    test::LogCapture log;
    Thread([] { throw std::runtime_error("standard"); }).join();
    Thread([] { throw Exception("ours"); }).join();
    Thread([] { throw 1; }).join();
    Thread([] { throw ThreadInterruptedException(); }).join();
    Thread(util::Function0<void>()).join();
    EXPECT_THAT(log.lines(), testing::ElementsAre(
                                 "4 thread/Thread:41 a thread ended with an exception: standard",
                                 "4 thread/Thread:41 a thread ended with an exception: ours",
                                 "4 thread/Thread:41 a thread ended with an exception: of "
                                 "unknown type"));
}

TEST(ThreadTest, IdentifiersTellThreadsApart) {
    const std::uint32_t own = getThreadId();
    EXPECT_EQ(own, getThreadId());
    EXPECT_EQ(own, static_cast<std::uint32_t>(gettid()));
    std::uint32_t other = own;
    Thread([&] { other = getThreadId(); }).join();
    EXPECT_NE(other, own);
}

TEST(ThreadTest, AForkedChildHasAnIdentifierOfItsOwn) {
    getThreadId();
    const pid_t child = fork();
    if (child == 0)
        _exit(getThreadId() == static_cast<std::uint32_t>(gettid()) ? 0 : 1);
    int status = 1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST(ThreadTest, AConditionIsWaitedForUntilADeadline) {
    Mutex mutex;
    ConditionVariable changed;
    ScopedLock<Mutex> lock(mutex);
    EXPECT_FALSE(changed.waitUntil(lock, Clock::now() - std::chrono::seconds(1)));
    yield();
}

TEST(AtomicTest, OperationsReturnTheDocumentedValues) {
    int volatile value = 1;
    EXPECT_EQ(atomicIncrementAcquire(&value), 2);
    EXPECT_EQ(atomicDecrementRelease(&value), 1);
    EXPECT_EQ(atomicDecrementRelease(&value), 0);
    EXPECT_EQ(atomicExchange(&value, 5), 0);
    EXPECT_EQ(atomicCompareAndExchange(&value, 4, 9), 5);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(atomicCompareAndExchange(&value, 5, 9), 5);
    EXPECT_EQ(value, 9);
}

TEST(AtomicTest, NoIncrementIsLostBetweenThreads) {
    int volatile value = 0;
    const auto count = [&] {
        for (int i = 0; i < 50'000; ++i)
            atomicIncrementAcquire(&value);
    };
    Thread first(count), second(count);
    first.join();
    second.join();
    EXPECT_EQ(value, 100'000);
}

TEST(ScratchPadTest, GivesAZeroTerminatedCopyOfAPart) {
    const String part = String("abcdef").substr(1, 3);
    EXPECT_STREQ(globalScratchPad().zeroTerminated(part), "bcd");
    EXPECT_STREQ(globalScratchPad().zeroTerminated(String()), "");
}

TEST(ScratchPadTest, GrowsAndIsTheThreadsOwn) {
    char* own = globalScratchPad().getBuffer(1 << 20);
    own[(1 << 20) - 1] = 'x';
    char* other = nullptr;
    Thread([&] { other = globalScratchPad().getBuffer(1); }).join();
    EXPECT_NE(own, other);
    EXPECT_EQ(globalScratchPad().getBuffer(10), own);
}

}  // namespace
}  // namespace tav::thread
