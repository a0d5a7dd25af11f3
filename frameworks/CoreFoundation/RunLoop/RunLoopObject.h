// SPDX-License-Identifier: MIT
#pragma once

#include <CoreFoundation/CFRunLoop.h>

namespace cf {

class RunLoop;
class Source;
class Timer;

/// The object behind a reference. Owner: the reference's.
RunLoop& loopOf(CFRunLoopRef reference);
Source& sourceOf(CFRunLoopSourceRef reference);
Timer& timerOf(CFRunLoopTimerRef reference);

/// Owner: the caller, of one reference.
RunLoop& newRunLoop();
CFRunLoopSourceRef newSource(CFIndex order, const CFRunLoopSourceContext& context);
CFRunLoopTimerRef newTimer(CFAbsoluteTime fireDate, CFTimeInterval intervalSeconds,
                           CFRunLoopTimerCallBack callout, const CFRunLoopTimerContext& context);

}  // namespace cf
