// SPDX-License-Identifier: MIT
#pragma once

#import <AppKit/AppKit.h>

/// Sends the application an event that says nothing: AppKit's loops look whether they were stopped
/// only after an event. Main thread.
inline void wakeApplication() {
    [NSApp postEvent:[NSEvent otherEventWithType:NSApplicationDefined
                                        location:NSZeroPoint
                                   modifierFlags:0
                                       timestamp:0
                                    windowNumber:0
                                         context:nil
                                         subtype:0
                                           data1:0
                                           data2:0]
             atStart:NO];
}
