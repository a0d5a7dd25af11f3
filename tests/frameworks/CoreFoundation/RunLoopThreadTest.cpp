// SPDX-License-Identifier: MIT
// Run loops and the lives of their threads; forked children.
#include "RunLoopItems.h"

#include "tests/support/Patience.h"
#include "tests/support/ThreadState.h"

#include <CoreFoundation/RunLoopDescriptor.h>
#include <CoreFoundation/RunLoopIntegration.h>
#include <atomic>
#include <condition_variable>
#include <dirent.h>
#include <fstream>
#include <gtest/gtest.h>
#include <mutex>
#include <poll.h>
#include <string>
#include <sys/epoll.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

int openDescriptors() {
    int count = 0;
    DIR* folder = opendir("/proc/self/fd");
    while (readdir(folder) != nullptr)
        ++count;
    closedir(folder);
    return count;
}

/// A thread that runs its loop until it is stopped.
class LoopThread {
public:
    LoopThread() : _thread([this] { run(); }) {
        std::unique_lock guard(_mutex);
        _condition.wait(guard, [this] { return _loop != nullptr; });
    }
    ~LoopThread() {
        if (_thread.joinable())
            end();
        CFRelease(_loop);
    }
    LoopThread(const LoopThread&) = delete;
    LoopThread& operator=(const LoopThread&) = delete;

    CFRunLoopRef loop() const { return _loop; }
    /// How often it has begun to wait so far.
    long waits() const {
        std::ifstream status("/proc/self/task/" + std::to_string(_id) + "/status");
        for (std::string line; std::getline(status, line);)
            if (line.starts_with("voluntary_ctxt_switches:"))
                return std::stol(line.substr(line.find(':') + 1));
        return -1;
    }
    /// Returns when it waits for something to do.
    void untilIdle() const {
        while (!CFRunLoopIsWaiting(_loop) || !tav::test::isAsleep(_id))
            std::this_thread::yield();
    }
    void end() {
        _source.signalAndWake();
        _thread.join();
    }

private:
    void run() {
        _source.add();
        {
            std::lock_guard guard(_mutex);
            _id = gettid();
            // Waking it from outside may come after its thread has ended.
            _loop = CFRunLoopGetCurrent();
            CFRetain(_loop);
        }
        _condition.notify_all();
        CFRunLoopRun();
    }

    TestSource _source{stopThisLoop};
    std::mutex _mutex;
    std::condition_variable _condition;
    CFRunLoopRef _loop = nullptr;
    pid_t _id = 0;
    std::thread _thread;
};

/// The exit status of a child that runs the function, or -1.
template <class Function>
int statusOfChild(Function function) {
    pid_t child = fork();
    if (child == 0) {
        alarm(60);
        _exit(function());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

TEST(RunLoopThread, EveryThreadHasALoopOfItsOwn) {
    CFRunLoopRef here = CFRunLoopGetCurrent();
    EXPECT_EQ(here, CFRunLoopGetCurrent());
    EXPECT_EQ(here, CFRunLoopGetMain());
    std::thread([here] {
        EXPECT_NE(CFRunLoopGetCurrent(), here);
        EXPECT_EQ(CFRunLoopGetMain(), here);
    }).join();
}

TEST(RunLoopThread, TheMainLoopCanBeAskedForByAnotherThreadFirst) {
    TestSource source;
    std::thread other([&] { source.addTo(CFRunLoopGetMain()).signalAndWake(); });
    other.join();
    EXPECT_TRUE(runUntil([&] { return source.calls() == 1; }));
}

TEST(RunLoopThread, WorkIsServedOnTheLoopsOwnThread) {
    std::thread::id servedOn;
    std::atomic<bool> served{false};
    TestSource source([&] {
        servedOn = std::this_thread::get_id();
        served = true;
        served.notify_all();
    });
    LoopThread thread;
    source.addTo(thread.loop(), kCFRunLoopDefaultMode).signalAndWake();
    served.wait(false);
    EXPECT_NE(servedOn, std::this_thread::get_id());
}

TEST(RunLoopThread, ALoopRetainedPastItsThreadCanStillBeWoken) {
    CFRunLoopRef loop = nullptr;
    std::thread([&] { loop = (CFRunLoopRef)CFRetain(CFRunLoopGetCurrent()); }).join();
    CFRunLoopWakeUp(loop);
    CFRunLoopStop(loop);
    TestSource source;
    source.addTo(loop);
    EXPECT_FALSE(CFRunLoopContainsSource(loop, source.get(), kCFRunLoopDefaultMode));
    CFRelease(loop);
}

TEST(RunLoopThread, TheEndOfAThreadTakesItsItemsOutOfItsLoop) {
    TestSource source;
    TestTimer timer(3600, 1);
    std::thread([&] {
        source.add();
        timer.add();
        EXPECT_EQ(CFGetRetainCount(source.get()), 2);
    }).join();
    EXPECT_EQ(CFGetRetainCount(source.get()), 1);
    EXPECT_EQ(CFGetRetainCount(timer.get()), 1);
    EXPECT_TRUE(CFRunLoopSourceIsValid(source.get()));
    timer.add();
    EXPECT_TRUE(CFRunLoopContainsTimer(CFRunLoopGetCurrent(), timer.get(), kCFRunLoopDefaultMode));
}

TEST(RunLoopThread, FiveHundredThreadsLeaveNothingBehind) {
    { LoopThread first; }
    int before = openDescriptors();
    for (int round = 0; round < 25; ++round) {
        std::vector<std::unique_ptr<LoopThread>> threads;
        for (int i = 0; i < 20; ++i)
            threads.push_back(std::make_unique<LoopThread>());
        for (auto& thread : threads)
            CFRunLoopWakeUp(thread->loop());
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST(RunLoopThread, InvalidatingWhileTheOtherThreadServesIsSafe) {
    // They outlive the thread, which may still be telling of the last change.
    std::atomic<int> calls{0};
    std::atomic<int> rounds{0};
    TestSource end([&] { ++rounds, rounds.notify_all(); });
    LoopThread thread;
    end.addTo(thread.loop());
    for (int i = 0; i < 500; ++i) {
        auto source = std::make_unique<TestSource>([&] { ++calls; });
        source->addTo(thread.loop()).signalAndWake();
        CFRunLoopSourceInvalidate(source->get());
        // What may still be in progress has to end before the source goes.
        TestSource barrier([&] { ++calls; });
        int seen = calls;
        barrier.addTo(thread.loop()).signalAndWake();
        while (calls == seen)
            std::this_thread::yield();
        end.signalAndWake();
        rounds.wait(i);
    }
}

TEST(RunLoopThread, AnIdleLoopIsNotWoken) {
    LoopThread thread;
    std::atomic<int> calls{0};
    TestSource source([&] { ++calls; });
    source.addTo(thread.loop());
    TestTimer timer(3600, 3600);
    CFRunLoopAddTimer(thread.loop(), timer.get(), kCFRunLoopCommonModes);
    // A first wait may still find wake-ups from the set-up.
    source.signalAndWake();
    EXPECT_TRUE(tav::test::comesTrue([&] { return calls == 1; }));
    thread.untilIdle();
    const long before = thread.waits();
    EXPECT_GT(before, 0);
    std::this_thread::sleep_for(std::chrono::seconds(2));
    // Any polling gives dozens; a machine that halts may add some.
    EXPECT_LE(thread.waits() - before, 8);
}

TEST(RunLoopFork, TheChildsLoopWorks) {
    TestSource source;
    TestTimer timer(3600, 3600);
    source.add();
    timer.add();
    int status = statusOfChild([&] {
        source.signalAndWake();
        if (CFRunLoopRunInMode(kCFRunLoopDefaultMode, 10, true) != kCFRunLoopRunHandledSource)
            return 1;
        CFRunLoopTimerSetNextFireDate(timer.get(), CFAbsoluteTimeGetCurrent() + 0.001);
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.1, false);
        return timer.calls() == 1 && source.calls() == 1 ? 0 : 2;
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(source.calls(), 0);
}

TEST(RunLoopFork, TheChildCannotWakeTheParent) {
    LoopThread thread;
    TestSource onThread;
    onThread.addTo(thread.loop());
    TestSource source;
    source.add();
    CFRunLoopRef loop = CFRunLoopGetCurrent();
    onePass();
    thread.untilIdle();
    const long before = thread.waits();
    int status = statusOfChild([&] {
        for (int i = 0; i < 1000; ++i) {
            source.signalAndWake();
            onThread.signalAndWake();
            CFRunLoopWakeUp(loop);
            onePass();
        }
        return 0;
    });
    EXPECT_EQ(status, 0);
    pollfd own{ULARunLoopGetDescriptor(loop), POLLIN, 0};
    EXPECT_EQ(poll(&own, 1, 0), 0);
    EXPECT_LE(thread.waits() - before, 2);
    EXPECT_EQ(onThread.calls(), 0);
    source.signalAndWake();
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 10, true), kCFRunLoopRunHandledSource);
}

TEST(RunLoopFork, TheChildDoesNotTakeTheParentsDescriptors) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    int calls = 0;
    cf::RunLoopDescriptor watch(ends[0], EPOLLIN, [&](uint32_t) {
        char byte = 0;
        EXPECT_EQ(read(ends[0], &byte, 1), 1);
        ++calls;
    });
    watch.schedule(CFRunLoopGetCurrent(), kCFRunLoopDefaultMode);
    ASSERT_EQ(write(ends[1], "x", 1), 1);
    EXPECT_EQ(statusOfChild([&] {
                  CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.02, true);
                  return calls;
              }),
              0);
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 10, true), kCFRunLoopRunHandledSource);
    EXPECT_EQ(calls, 1);
    watch.invalidate();
    close(ends[0]);
    close(ends[1]);
}

TEST(RunLoopFork, ForkingWhileOtherThreadsUseTheLoopLeavesNoLockBehind) {
    std::atomic<bool> stop{false};
    CFRunLoopRef loop = CFRunLoopGetCurrent();
    TestSource keeper;
    keeper.add();
    std::thread other([&] {
        while (!stop) {
            TestSource source;
            source.addTo(loop).signalAndWake();
        }
    });
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(statusOfChild([&] {
                      TestTimer timer(0, 0);
                      timer.add();
                      onePass();
                      return timer.calls() == 1 ? 0 : 1;
                  }),
                  0);
    }
    stop = true;
    other.join();
}
