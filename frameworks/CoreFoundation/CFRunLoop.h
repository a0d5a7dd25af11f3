// SPDX-License-Identifier: MIT
// Run loops: every thread has one; it waits for sources and timers and calls them.
//
// A run loop runs in one mode at a time and serves the items that were added in that mode or in
// the common modes, if the mode is one of those. The thread's NSRunLoop is the same loop seen from
// Objective-C: whoever runs it (an alert, a menu, an application's main loop) serves these items
// too, and CFRunLoopRun serves what was added to the NSRunLoop.
//
// Thread: every function but the two that run may be called from any thread. Call-backs come on
// the run loop's own thread, and no lock is held during them.
#pragma once

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFDate.h>

CF_EXTERN_C_BEGIN

typedef struct __CFRunLoop* CFRunLoopRef;
typedef struct __CFRunLoopSource* CFRunLoopSourceRef;
typedef struct __CFRunLoopTimer* CFRunLoopTimerRef;
typedef CFStringRef CFRunLoopMode;

CF_EXPORT const CFRunLoopMode kCFRunLoopDefaultMode;
/// Stands for all common modes: the default mode, those of modal panels and of event tracking, and
/// those that CFRunLoopAddCommonMode names. A loop cannot run in it.
CF_EXPORT const CFRunLoopMode kCFRunLoopCommonModes;

typedef SInt32 CFRunLoopRunResult;
enum {
    kCFRunLoopRunFinished = 1,
    kCFRunLoopRunStopped = 2,
    kCFRunLoopRunTimedOut = 3,
    kCFRunLoopRunHandledSource = 4,
};

/// Owner: the thread. It stays valid past the thread's end while somebody retains it.
CF_EXPORT CFRunLoopRef CFRunLoopGetCurrent(void);
CF_EXPORT CFRunLoopRef CFRunLoopGetMain(void);

/// Runs the calling thread's loop in the default mode until it is stopped or has nothing left to
/// serve. A C++ exception of a call-back leaves through here, and the loop can be run again.
CF_EXPORT void CFRunLoopRun(void);
/// Runs for that many seconds at most; 0 makes one pass without waiting. Returns Finished when the
/// mode has (or is left with) nothing to serve, Stopped after CFRunLoopStop, HandledSource when
/// returnAfterSourceHandled is set and one source was handled (timers are no sources), and
/// TimedOut otherwise.
CF_EXPORT CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode mode, CFTimeInterval seconds,
                                                Boolean returnAfterSourceHandled);
/// Ends the innermost run of the loop. Does nothing when the loop is not in one of the two
/// functions above.
CF_EXPORT void CFRunLoopStop(CFRunLoopRef runLoop);
/// Makes a waiting loop look at its sources. One wake-up that is still to be served stands for all
/// that follow, so calling this often is cheap.
CF_EXPORT void CFRunLoopWakeUp(CFRunLoopRef runLoop);
CF_EXPORT Boolean CFRunLoopIsWaiting(CFRunLoopRef runLoop);
/// Fails: null when the loop is not running.
CF_EXPORT CFRunLoopMode CFRunLoopCopyCurrentMode(CFRunLoopRef runLoop);
CF_EXPORT void CFRunLoopAddCommonMode(CFRunLoopRef runLoop, CFRunLoopMode mode);

typedef struct {
    CFIndex version;
    void* info;
    const void* (*retain)(const void* info);
    void (*release)(const void* info);
    CFStringRef (*copyDescription)(const void* info);
    Boolean (*equal)(const void* info, const void* other);
    CFHashCode (*hash)(const void* info);
    /// Called for every single mode in which the source is added or from which it is removed.
    void (*schedule)(void* info, CFRunLoopRef runLoop, CFRunLoopMode mode);
    void (*cancel)(void* info, CFRunLoopRef runLoop, CFRunLoopMode mode);
    void (*perform)(void* info);
} CFRunLoopSourceContext;

/// Sources are called in ascending order. Fails: null for a context of another version than 0.
CF_EXPORT CFRunLoopSourceRef CFRunLoopSourceCreate(CFAllocatorRef allocator, CFIndex order,
                                                   CFRunLoopSourceContext* context);
CF_EXPORT CFIndex CFRunLoopSourceGetOrder(CFRunLoopSourceRef source);
CF_EXPORT void CFRunLoopSourceGetContext(CFRunLoopSourceRef source,
                                         CFRunLoopSourceContext* context);
/// Marks the source for its loop's next pass; several signals before it give one call. The loop is
/// not woken: that takes CFRunLoopWakeUp.
CF_EXPORT void CFRunLoopSourceSignal(CFRunLoopSourceRef source);
/// Removes the source from every loop, for ever. A call in progress on another thread goes on.
CF_EXPORT void CFRunLoopSourceInvalidate(CFRunLoopSourceRef source);
CF_EXPORT Boolean CFRunLoopSourceIsValid(CFRunLoopSourceRef source);
CF_EXPORT void CFRunLoopAddSource(CFRunLoopRef runLoop, CFRunLoopSourceRef source,
                                  CFRunLoopMode mode);
CF_EXPORT void CFRunLoopRemoveSource(CFRunLoopRef runLoop, CFRunLoopSourceRef source,
                                     CFRunLoopMode mode);
CF_EXPORT Boolean CFRunLoopContainsSource(CFRunLoopRef runLoop, CFRunLoopSourceRef source,
                                          CFRunLoopMode mode);

typedef struct {
    CFIndex version;
    void* info;
    const void* (*retain)(const void* info);
    void (*release)(const void* info);
    CFStringRef (*copyDescription)(const void* info);
} CFRunLoopTimerContext;

typedef void (*CFRunLoopTimerCallBack)(CFRunLoopTimerRef timer, void* info);

/// A timer with an interval above 0 fires at the fire date and then on that grid: a loop that is
/// late fires it once and goes on with the next point of the grid. Any other timer fires once and
/// becomes invalid. Fire dates count real time from here on, whatever is done to the clock.
CF_EXPORT CFRunLoopTimerRef CFRunLoopTimerCreate(CFAllocatorRef allocator, CFAbsoluteTime fireDate,
                                                 CFTimeInterval interval, CFOptionFlags flags,
                                                 CFIndex order, CFRunLoopTimerCallBack callout,
                                                 CFRunLoopTimerContext* context);
CF_EXPORT CFTimeInterval CFRunLoopTimerGetInterval(CFRunLoopTimerRef timer);
CF_EXPORT Boolean CFRunLoopTimerDoesRepeat(CFRunLoopTimerRef timer);
/// During the call-out of a repeating timer this is the next fire date. Fails: 0 when invalid.
CF_EXPORT CFAbsoluteTime CFRunLoopTimerGetNextFireDate(CFRunLoopTimerRef timer);
/// Moves the timer and its grid. Within its call-out this also keeps a one-shot timer valid.
CF_EXPORT void CFRunLoopTimerSetNextFireDate(CFRunLoopTimerRef timer, CFAbsoluteTime fireDate);
CF_EXPORT void CFRunLoopTimerInvalidate(CFRunLoopTimerRef timer);
CF_EXPORT Boolean CFRunLoopTimerIsValid(CFRunLoopTimerRef timer);
CF_EXPORT void CFRunLoopTimerGetContext(CFRunLoopTimerRef timer, CFRunLoopTimerContext* context);
/// A timer belongs to one run loop; adding it to a second one does nothing.
CF_EXPORT void CFRunLoopAddTimer(CFRunLoopRef runLoop, CFRunLoopTimerRef timer, CFRunLoopMode mode);
CF_EXPORT void CFRunLoopRemoveTimer(CFRunLoopRef runLoop, CFRunLoopTimerRef timer,
                                    CFRunLoopMode mode);
CF_EXPORT Boolean CFRunLoopContainsTimer(CFRunLoopRef runLoop, CFRunLoopTimerRef timer,
                                         CFRunLoopMode mode);

CF_EXTERN_C_END
