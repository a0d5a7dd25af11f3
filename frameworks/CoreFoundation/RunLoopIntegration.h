// SPDX-License-Identifier: MIT
// Lets another main loop (GLib's, Qt's, an application's own) drive a thread's run loop.
#pragma once

#include <CoreFoundation/CFRunLoop.h>

CF_EXTERN_C_BEGIN

/// A descriptor that polls readable while the run loop has something to serve in its default mode.
/// Owner: the run loop; it lives as long and must only be polled, not read.
/// Fails: -1 when descriptors have run out (logged).
CF_EXPORT int ULARunLoopGetDescriptor(CFRunLoopRef runLoop);

/// Serves, without waiting, what is ready in the default mode.
/// Thread: the run loop's own. Fails: false, doing nothing, on another thread.
CF_EXPORT Boolean ULARunLoopServe(CFRunLoopRef runLoop);

CF_EXTERN_C_END
