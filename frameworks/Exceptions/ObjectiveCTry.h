// SPDX-License-Identifier: MIT
// @try for code that needs the exception object: C++'s catch (...) stops an Objective-C exception
// but cannot look at it.
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

/// Calls function(context).
/// Returns the NSException that it raised, or null when it raised none. C++ exceptions pass.
/// Owner: autoreleased, so an autorelease pool must be in place.
__attribute__((visibility("default"))) void* ULAObjectiveCTry(void (*function)(void*),
                                                              void* context);

#ifdef __cplusplus
}
#endif
