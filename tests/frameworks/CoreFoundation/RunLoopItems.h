// SPDX-License-Identifier: MIT
// Sources and timers over functions, for the tests of run loops.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <functional>

/// A source that calls a function. Invalidated at the end of its scope.
class TestSource {
public:
    explicit TestSource(std::function<void()> function = {}, CFIndex order = 0)
        : _function(std::move(function)) {
        CFRunLoopSourceContext context{};
        context.info = this;
        context.perform = [](void* self) { static_cast<TestSource*>(self)->perform(); };
        _source = CFRunLoopSourceCreate(kCFAllocatorDefault, order, &context);
    }
    ~TestSource() {
        CFRunLoopSourceInvalidate(_source);
        CFRelease(_source);
    }
    TestSource(const TestSource&) = delete;
    TestSource& operator=(const TestSource&) = delete;

    CFRunLoopSourceRef get() const { return _source; }
    int calls() const { return _calls; }

    TestSource& addTo(CFRunLoopRef loop, CFStringRef mode = kCFRunLoopCommonModes) {
        _loop = loop;
        CFRunLoopAddSource(loop, _source, mode);
        return *this;
    }
    TestSource& add(CFStringRef mode = kCFRunLoopCommonModes) {
        return addTo(CFRunLoopGetCurrent(), mode);
    }
    void signal() { CFRunLoopSourceSignal(_source); }
    void signalAndWake() {
        signal();
        CFRunLoopWakeUp(_loop);
    }

private:
    void perform() {
        ++_calls;
        if (_function)
            _function();
    }

    std::function<void()> _function;
    CFRunLoopSourceRef _source;
    CFRunLoopRef _loop = nullptr;
    int _calls = 0;
};

/// A timer that calls a function. Invalidated at the end of its scope.
class TestTimer {
public:
    /// Units: seconds; the delay is that before the first call.
    TestTimer(double delay, double interval, std::function<void()> function = {})
        : _function(std::move(function)) {
        CFRunLoopTimerContext context{};
        context.info = this;
        _timer = CFRunLoopTimerCreate(
            kCFAllocatorDefault, CFAbsoluteTimeGetCurrent() + delay, interval, 0, 0,
            [](CFRunLoopTimerRef, void* self) { static_cast<TestTimer*>(self)->fire(); }, &context);
    }
    ~TestTimer() {
        CFRunLoopTimerInvalidate(_timer);
        CFRelease(_timer);
    }
    TestTimer(const TestTimer&) = delete;
    TestTimer& operator=(const TestTimer&) = delete;

    CFRunLoopTimerRef get() const { return _timer; }
    int calls() const { return _calls; }

    TestTimer& add(CFStringRef mode = kCFRunLoopCommonModes) {
        CFRunLoopAddTimer(CFRunLoopGetCurrent(), _timer, mode);
        return *this;
    }

private:
    void fire() {
        ++_calls;
        if (_function)
            _function();
    }

    std::function<void()> _function;
    CFRunLoopTimerRef _timer;
    int _calls = 0;
};

/// Runs until the condition holds, which a call-back must bring about, or as long as a test may
/// take.
template <class Condition>
bool runUntil(Condition condition, CFStringRef mode = kCFRunLoopDefaultMode) {
    CFAbsoluteTime deadline = CFAbsoluteTimeGetCurrent() + 100;
    while (!condition() && CFAbsoluteTimeGetCurrent() < deadline)
        CFRunLoopRunInMode(mode, deadline - CFAbsoluteTimeGetCurrent(), true);
    return condition();
}

inline CFRunLoopRunResult onePass(CFStringRef mode = kCFRunLoopDefaultMode) {
    return CFRunLoopRunInMode(mode, 0, false);
}

inline void stopThisLoop() {
    CFRunLoopStop(CFRunLoopGetCurrent());
}
