// SPDX-License-Identifier: MIT
// Displays by their numbers, and their modes.
// Thread: any.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

CF_EXTERN_C_BEGIN

/// The same for as long as the display server runs, whatever is plugged in and out.
typedef uint32_t CGDirectDisplayID;
#define kCGNullDirectDisplay ((CGDirectDisplayID)0)

typedef struct CGDisplayMode* CGDisplayModeRef;

/// The mode in which the display is now. Owner: the caller, who ends with CGDisplayModeRelease.
/// Fails: null for a display that is not attached.
CF_EXPORT CGDisplayModeRef CGDisplayCopyDisplayMode(CGDirectDisplayID display);
/// Units: Hz; 0 where it is not known.
CF_EXPORT double CGDisplayModeGetRefreshRate(CGDisplayModeRef mode);
/// Null is ignored.
CF_EXPORT void CGDisplayModeRelease(CGDisplayModeRef mode);

CF_EXTERN_C_END
