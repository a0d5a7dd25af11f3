// SPDX-License-Identifier: MIT
// Being told of displays that come, go, move or change their modes.
#pragma once

#include <ApplicationServices/CGDirectDisplay.h>

CF_EXTERN_C_BEGIN

typedef int32_t CGError;
enum {
    kCGErrorSuccess = 0,
    kCGErrorIllegalArgument = 1001,
};

/// The platform's bits. A change is told once it is done: the first bit is never set here.
typedef uint32_t CGDisplayChangeSummaryFlags;
enum {
    kCGDisplayBeginConfigurationFlag = 1u << 0,
    kCGDisplayMovedFlag = 1u << 1,
    kCGDisplaySetMainFlag = 1u << 2,
    kCGDisplaySetModeFlag = 1u << 3,
    kCGDisplayAddFlag = 1u << 4,
    kCGDisplayRemoveFlag = 1u << 5,
    kCGDisplayEnabledFlag = 1u << 8,
    kCGDisplayDisabledFlag = 1u << 9,
    kCGDisplayDesktopShapeChangedFlag = 1u << 12,
};

/// Thread: the main one, while its run loop runs in a common mode.
typedef void (*CGDisplayReconfigurationCallBack)(CGDirectDisplayID display,
                                                 CGDisplayChangeSummaryFlags flags, void* userInfo);

/// From now on the function is called once for each display that a change has changed. Registered
/// twice it is called twice. Succeeds without a display server, too: one that is reached later
/// brings displays.
/// Thread: any. Fails: kCGErrorIllegalArgument for no function.
CF_EXPORT CGError
CGDisplayRegisterReconfigurationCallback(CGDisplayReconfigurationCallBack callback, void* userInfo);
/// Ends one registration of this function with this argument. On the main thread: no call begins
/// after it, not even of those that are due.
/// Thread: any. Fails: kCGErrorIllegalArgument where there is none.
CF_EXPORT CGError CGDisplayRemoveReconfigurationCallback(CGDisplayReconfigurationCallBack callback,
                                                         void* userInfo);

CF_EXTERN_C_END
