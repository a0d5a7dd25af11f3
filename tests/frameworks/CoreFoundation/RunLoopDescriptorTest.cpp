// SPDX-License-Identifier: MIT
#include "RunLoopItems.h"

#include <CoreFoundation/RunLoopDescriptor.h>
#include <CoreFoundation/RunLoopIntegration.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/epoll.h>
#include <thread>
#include <unistd.h>

namespace {

class Pipe {
public:
    Pipe() { EXPECT_EQ(pipe(_ends), 0); }
    ~Pipe() {
        close(_ends[0]);
        close(_ends[1]);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int readEnd() const { return _ends[0]; }
    void put() const { EXPECT_EQ(write(_ends[1], "x", 1), 1); }
    void take() const {
        char byte = 0;
        EXPECT_EQ(read(_ends[0], &byte, 1), 1);
    }

private:
    int _ends[2] = {-1, -1};
};

bool isReadable(int descriptor) {
    pollfd asked{descriptor, POLLIN, 0};
    return ::poll(&asked, 1, 0) == 1;
}

}  // namespace

TEST(RunLoopDescriptor, AReadyDescriptorIsAHandledSource) {
    Pipe pipe;
    int calls = 0;
    cf::RunLoopDescriptor watch(pipe.readEnd(), EPOLLIN, [&](uint32_t events) {
        EXPECT_EQ(events, static_cast<uint32_t>(EPOLLIN));
        ++calls;
        pipe.take();
    });
    watch.schedule(CFRunLoopGetCurrent(), kCFRunLoopDefaultMode);
    EXPECT_EQ(onePass(), kCFRunLoopRunTimedOut);
    pipe.put();
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 10, true), kCFRunLoopRunHandledSource);
    EXPECT_EQ(calls, 1);
}

TEST(RunLoopDescriptor, WhatIsLeftUnreadIsReportedAgain) {
    Pipe pipe;
    int calls = 0;
    cf::RunLoopDescriptor watch(pipe.readEnd(), EPOLLIN, [&](uint32_t) {
        ++calls;
        pipe.take();
    });
    watch.schedule(CFRunLoopGetCurrent(), kCFRunLoopCommonModes);
    pipe.put();
    pipe.put();
    EXPECT_TRUE(runUntil([&] { return calls == 2; }));
}

TEST(RunLoopDescriptor, ADescriptorAddedByAnotherThreadIsServed) {
    TestSource keeper;
    keeper.add();
    Pipe pipe;
    pipe.put();
    int calls = 0;
    cf::RunLoopDescriptor watch(pipe.readEnd(), EPOLLIN, [&](uint32_t) {
        ++calls;
        pipe.take();
    });
    CFRunLoopRef loop = CFRunLoopGetCurrent();
    std::thread other([&] {
        while (!CFRunLoopIsWaiting(loop))
            std::this_thread::yield();
        watch.schedule(loop, kCFRunLoopDefaultMode);
    });
    EXPECT_TRUE(runUntil([&] { return calls == 1; }));
    other.join();
}

TEST(RunLoopDescriptor, AnUnscheduledDescriptorIsNotServed) {
    Pipe pipe;
    pipe.put();
    cf::RunLoopDescriptor watch(pipe.readEnd(), EPOLLIN, [](uint32_t) { FAIL(); });
    watch.schedule(CFRunLoopGetCurrent(), kCFRunLoopDefaultMode);
    watch.unschedule(CFRunLoopGetCurrent(), kCFRunLoopDefaultMode);
    EXPECT_EQ(onePass(), kCFRunLoopRunFinished);
}

TEST(RunLoopDescriptor, ItMayInvalidateItselfInItsCallback) {
    Pipe pipe;
    pipe.put();
    int calls = 0;
    cf::RunLoopDescriptor watch(pipe.readEnd(), EPOLLIN, [&](uint32_t) {
        ++calls;
        watch.invalidate();
    });
    watch.schedule(CFRunLoopGetCurrent(), kCFRunLoopDefaultMode);
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 10, false), kCFRunLoopRunFinished);
    EXPECT_EQ(calls, 1);
}

TEST(RunLoopDescriptor, MoreReadyDescriptorsThanOnePassTakesAreAllServed) {
    constexpr std::size_t count = 40;
    std::vector<Pipe> pipes(count);
    std::vector<std::unique_ptr<cf::RunLoopDescriptor>> watches;
    std::size_t calls = 0;
    for (Pipe& pipe : pipes) {
        pipe.put();
        watches.push_back(
            std::make_unique<cf::RunLoopDescriptor>(pipe.readEnd(), EPOLLIN, [&](uint32_t) {
                ++calls;
                pipe.take();
            }));
        watches.back()->schedule(CFRunLoopGetCurrent(), kCFRunLoopDefaultMode);
    }
    EXPECT_TRUE(runUntil([&] { return calls == count; }));
}

TEST(RunLoopIntegration, TheDescriptorIsReadableWhileSomethingIsToBeServed) {
    CFRunLoopRef loop = CFRunLoopGetCurrent();
    int descriptor = ULARunLoopGetDescriptor(loop);
    EXPECT_EQ(ULARunLoopGetDescriptor(loop), descriptor);
    TestSource source;
    source.add();
    ULARunLoopServe(loop);
    EXPECT_FALSE(isReadable(descriptor));
    source.signalAndWake();
    EXPECT_TRUE(isReadable(descriptor));
    EXPECT_TRUE(ULARunLoopServe(loop));
    EXPECT_EQ(source.calls(), 1);
    EXPECT_FALSE(isReadable(descriptor));
    source.signalAndWake();
    EXPECT_TRUE(isReadable(descriptor));
    ULARunLoopServe(loop);
    EXPECT_EQ(source.calls(), 2);
}

TEST(RunLoopIntegration, ItTellsOfTimersAndDescriptorsOfTheDefaultMode) {
    CFRunLoopRef loop = CFRunLoopGetCurrent();
    int descriptor = ULARunLoopGetDescriptor(loop);
    ULARunLoopServe(loop);
    TestTimer timer(0, 0);
    timer.add(kCFRunLoopDefaultMode);
    pollfd asked{descriptor, POLLIN, 0};
    EXPECT_EQ(::poll(&asked, 1, 20000), 1);
    ULARunLoopServe(loop);
    EXPECT_EQ(timer.calls(), 1);
    EXPECT_FALSE(isReadable(descriptor));
    Pipe pipe;
    cf::RunLoopDescriptor watch(pipe.readEnd(), EPOLLIN, [&](uint32_t) { pipe.take(); });
    watch.schedule(loop, kCFRunLoopDefaultMode);
    EXPECT_FALSE(isReadable(descriptor));
    pipe.put();
    EXPECT_TRUE(isReadable(descriptor));
    ULARunLoopServe(loop);
    EXPECT_FALSE(isReadable(descriptor));
}

TEST(RunLoopIntegration, OnlyTheLoopsOwnThreadServes) {
    CFRunLoopRef loop = CFRunLoopGetCurrent();
    std::thread([loop] { EXPECT_FALSE(ULARunLoopServe(loop)); }).join();
}
