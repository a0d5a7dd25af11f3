// SPDX-License-Identifier: MIT
// The same loop seen from Objective-C: NSRunLoop serves what CFRunLoop was given, and the reverse.
#import <Foundation/Foundation.h>

#include "RunLoopItems.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

@interface NSRunLoopTestTarget : NSObject {
@public
    int _calls;
}
- (void)call;
- (void)stop;
@end

@implementation NSRunLoopTestTarget
- (void)call {
    ++_calls;
}
- (void)stop {
    ++_calls;
    stopThisLoop();
}
@end

namespace {

class NSRunLoopTest : public testing::Test {
protected:
    NSRunLoopTest() : _pool([[NSAutoreleasePool alloc] init]), _target([NSRunLoopTestTarget new]) {}
    ~NSRunLoopTest() override {
        [_target release];
        [_pool release];
    }

    template <class Condition>
    bool runHostUntil(Condition condition, NSString* mode = NSDefaultRunLoopMode) {
        NSDate* deadline = [NSDate dateWithTimeIntervalSinceNow:60];
        while (!condition() && [deadline timeIntervalSinceNow] > 0)
            [[NSRunLoop currentRunLoop] runMode:mode beforeDate:deadline];
        return condition();
    }

    NSAutoreleasePool* _pool;
    NSRunLoopTestTarget* _target;
};

}  // namespace

TEST_F(NSRunLoopTest, ItServesSourcesSignalledByManyThreads) {
    std::atomic<int> posted{0};
    int seen = 0;
    TestSource source([&] { seen = posted.load(); });
    source.add();
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 5000; ++round) {
                ++posted;
                source.signalAndWake();
            }
        });
    }
    EXPECT_TRUE(runHostUntil([&] { return seen == 20000; }));
    for (auto& thread : threads)
        thread.join();
}

TEST_F(NSRunLoopTest, ItServesTheModesOfPanelsAndOfEventTracking) {
    for (NSString* mode in @[ @"NSModalPanelRunLoopMode", @"NSEventTrackingRunLoopMode" ]) {
        TestSource source;
        TestTimer timer(0.001, 0);
        source.add();
        timer.add();
        std::thread other([&] { source.signalAndWake(); });
        EXPECT_TRUE(runHostUntil([&] { return source.calls() == 1 && timer.calls() == 1; }, mode));
        other.join();
    }
}

TEST_F(NSRunLoopTest, ItServesASourceThatIsSignalledWithoutAWakeUp) {
    TestSource source;
    source.add().signal();
    [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate distantPast]];
    EXPECT_EQ(source.calls(), 1);
}

TEST_F(NSRunLoopTest, ItServesTimersAndModesOfTheirOwn) {
    TestTimer timer(0.001, 0);
    timer.add(CFSTR("OwnMode"));
    EXPECT_TRUE(runHostUntil([&] { return timer.calls() == 1; }, @"OwnMode"));
}

TEST_F(NSRunLoopTest, ACFRunServesObjectiveCTimers) {
    TestSource keeper;
    keeper.add();
    [NSTimer scheduledTimerWithTimeInterval:0.001
                                     target:_target
                                   selector:@selector(stop)
                                   userInfo:nil
                                    repeats:NO];
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 60, false), kCFRunLoopRunStopped);
    EXPECT_EQ(_target->_calls, 1);
}

TEST_F(NSRunLoopTest, ACFRunServesCallsOntoTheMainThread) {
    TestSource keeper;
    keeper.add();
    NSRunLoopTestTarget* target = _target;
    std::thread other([target] {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        [target performSelectorOnMainThread:@selector(stop) withObject:nil waitUntilDone:NO];
        [pool release];
    });
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 60, false), kCFRunLoopRunStopped);
    other.join();
}

TEST_F(NSRunLoopTest, APortKeepsTheRunOfAThreadAlive) {
    std::thread([] {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        NSPort* port = [NSPort port];
        [[NSRunLoop currentRunLoop] addPort:port forMode:NSDefaultRunLoopMode];
        EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.01, false), kCFRunLoopRunTimedOut);
        [[NSRunLoop currentRunLoop] removePort:port forMode:NSDefaultRunLoopMode];
        EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 10, false), kCFRunLoopRunFinished);
        [pool release];
    }).join();
}

TEST_F(NSRunLoopTest, ASourceSignalledByAnObjectiveCTimerIsServedInTheSameRun) {
    TestSource source;
    source.add();
    CFRunLoopSourceRef reference = source.get();
    NSInvocation* signal = [NSInvocation
        invocationWithMethodSignature:[_target methodSignatureForSelector:@selector(call)]];
    [signal setTarget:_target];
    [signal setSelector:@selector(call)];
    [NSTimer scheduledTimerWithTimeInterval:0.001 invocation:signal repeats:NO];
    TestTimer signaller(0.002, 0, [&] { CFRunLoopSourceSignal(reference); });
    signaller.add();
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 60, true), kCFRunLoopRunHandledSource);
    EXPECT_EQ(source.calls(), 1);
}

TEST_F(NSRunLoopTest, AnExceptionGoesThroughAnObjectiveCLoopToItsCaller) {
    TestSource source([] { throw std::runtime_error("from a call-back"); });
    source.add().signalAndWake();
    EXPECT_THROW([[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                                          beforeDate:[NSDate dateWithTimeIntervalSinceNow:10]],
                 std::runtime_error);
}

TEST_F(NSRunLoopTest, ObjectsReleasedInCallbacksAreFreedWithinTheRun) {
    NSRunLoopTestTarget* object = [NSRunLoopTestTarget new];
    TestSource source([&] { [[object retain] autorelease]; });
    source.add().signalAndWake();
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 10, true);
    onePass();
    EXPECT_EQ([object retainCount], 1U);
    [object release];
}
