// SPDX-License-Identifier: MIT
#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>
#include <Exceptions/ObjectiveCTry.h>
#include <gtest/gtest.h>
#include <stdexcept>

#include "ThrowingCode.h"

namespace {

class Pool {
public:
    Pool() : _pool([[NSAutoreleasePool alloc] init]) {}
    ~Pool() { [_pool release]; }
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;

private:
    NSAutoreleasePool* _pool;
};

struct Counted {
    explicit Counted(int& c) : count(c) { ++count; }
    ~Counted() { --count; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    int& count;
};

int alive = 0;

void throwWithLocals() {
    Counted one(alive);
    Counted two(alive);
    InCpp::throwRuntimeError();
}

}  // namespace

TEST(Exceptions, ACatchClauseInObjectiveCppCatchesWhatObjectiveCppThrows) {
    EXPECT_EQ(InObjectiveCpp::caught(InObjectiveCpp::throwRuntimeError), "from Objective-C++");
}

TEST(Exceptions, ACatchClauseInObjectiveCppCatchesWhatCppThrows) {
    EXPECT_EQ(InObjectiveCpp::caught(InCpp::throwRuntimeError), "from C++");
}

TEST(Exceptions, ACatchClauseInCppCatchesWhatObjectiveCppThrows) {
    EXPECT_EQ(InCpp::caught(InObjectiveCpp::throwRuntimeError), "from Objective-C++");
}

TEST(Exceptions, ACatchClauseInASharedInlineFunctionWorks) {
    EXPECT_EQ(caughtInline(InCpp::throwRuntimeError), "from C++");
    EXPECT_EQ(caughtInline(InObjectiveCpp::throwRuntimeError), "from Objective-C++");
}

TEST(Exceptions, ExceptionsCrossTheBorderOfALibraryBothWays) {
    EXPECT_EQ(InLibrary::caught(InObjectiveCpp::throwRuntimeError), "from Objective-C++");
    EXPECT_EQ(InObjectiveCpp::caught(InLibrary::throwRuntimeError), "from a library");
    EXPECT_EQ(InCpp::caught(InLibrary::throwRuntimeError), "from a library");
}

TEST(Exceptions, CatchAllStopsAnObjectiveCException) {
    Pool pool;
    EXPECT_EQ(InObjectiveCpp::caught(InObjectiveCpp::raise), "unknown");
    EXPECT_EQ(InCpp::caught(InObjectiveCpp::raise), "unknown");
    EXPECT_EQ(InLibrary::caught(InObjectiveCpp::raise), "unknown");
    EXPECT_EQ(InCpp::caught(InLibrary::raise), "unknown");
}

TEST(Exceptions, LocalObjectsAreDestroyedOnTheWay) {
    EXPECT_EQ(InObjectiveCpp::caught(throwWithLocals), "from C++");
    EXPECT_EQ(alive, 0);
}

TEST(Exceptions, AnExceptionCanBeCarriedAndThrownAgain) {
    std::exception_ptr carried;
    try {
        InObjectiveCpp::throwRuntimeError();
    } catch (...) {
        carried = std::current_exception();
    }
    EXPECT_THROW(std::rethrow_exception(carried), std::runtime_error);
}

TEST(ExceptionsDeathTest, NoexceptIsEnforcedInObjectiveCpp) {
    EXPECT_DEATH(InObjectiveCpp::throwThroughNoexcept(), "from C\\+\\+");
}

TEST(ExceptionsDeathTest, NoexceptIsEnforcedInCpp) {
    EXPECT_DEATH(InCpp::throwThroughNoexcept(), "from Objective-C\\+\\+");
}

TEST(Exceptions, ObjectiveCTryGivesTheExceptionObject) {
    Pool pool;
    void* raised = ULAObjectiveCTry([](void*) { InObjectiveCpp::raise(); }, nullptr);
    ASSERT_NE(raised, nullptr);
    EXPECT_STREQ([[static_cast<NSException*>(raised) name] UTF8String], "TestException");
    EXPECT_STREQ([[static_cast<NSException*>(raised) reason] UTF8String], "from Objective-C");
}

TEST(Exceptions, ObjectiveCTryGivesNullWhenNothingIsRaised) {
    Pool pool;
    int called = 0;
    EXPECT_EQ(ULAObjectiveCTry([](void* count) { ++*static_cast<int*>(count); }, &called), nullptr);
    EXPECT_EQ(called, 1);
}

namespace {

// Runs the loop with a source that throws once, and says what came out.
class ThrowingSource {
public:
    explicit ThrowingSource(Action action) : _action(action) {
        CFRunLoopSourceContext context{};
        context.info = this;
        context.perform = [](void* self) { static_cast<ThrowingSource*>(self)->perform(); };
        _source = CFRunLoopSourceCreate(kCFAllocatorDefault, 0, &context);
        CFRunLoopAddSource(CFRunLoopGetCurrent(), _source, kCFRunLoopCommonModes);
    }
    ~ThrowingSource() {
        CFRunLoopSourceInvalidate(_source);
        CFRelease(_source);
    }
    ThrowingSource(const ThrowingSource&) = delete;
    ThrowingSource& operator=(const ThrowingSource&) = delete;

    void signal() {
        CFRunLoopSourceSignal(_source);
        CFRunLoopWakeUp(CFRunLoopGetCurrent());
    }
    int calls() const { return _calls; }

private:
    void perform() {
        ++_calls;
        if (_calls == 1)
            _action();
    }

    Action _action;
    int _calls = 0;
    CFRunLoopSourceRef _source;
};

void runLoop() {
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 5, true);
}

}  // namespace

TEST(Exceptions, ACallbackThrowsThroughTheRunLoopToItsCaller) {
    ThrowingSource source(InObjectiveCpp::throwRuntimeError);
    source.signal();
    EXPECT_EQ(InCpp::caught(runLoop), "from Objective-C++");
    EXPECT_EQ(CFRunLoopCopyCurrentMode(CFRunLoopGetCurrent()), nullptr);
}

TEST(Exceptions, TheRunLoopServesOnAfterACallbackHasThrown) {
    ThrowingSource source(InCpp::throwRuntimeError);
    source.signal();
    EXPECT_EQ(InObjectiveCpp::caught(runLoop), "from C++");
    source.signal();
    EXPECT_EQ(InObjectiveCpp::caught(runLoop), "nothing");
    EXPECT_EQ(source.calls(), 2);
}

TEST(Exceptions, WhatACallbackLeftUndoneByThrowingIsServedNext) {
    ThrowingSource first(InCpp::throwRuntimeError);
    ThrowingSource second([] {});
    first.signal();
    second.signal();
    EXPECT_EQ(InCpp::caught(runLoop), "from C++");
    EXPECT_EQ(InCpp::caught(runLoop), "nothing");
    EXPECT_EQ(second.calls(), 1);
}

TEST(Exceptions, AnObjectiveCExceptionOfACallbackReachesTheCallerOfTheLoop) {
    Pool pool;
    ThrowingSource source(InObjectiveCpp::raise);
    source.signal();
    EXPECT_EQ(InCpp::caught(runLoop), "unknown");
}
