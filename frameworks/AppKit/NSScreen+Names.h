// SPDX-License-Identifier: MIT
// What GNUstep's screens do not tell.
#pragma once

#import <AppKit/AppKit.h>

@interface NSScreen (ULANames)

/// The platform's method. Here it is the name of the display's output: "HDMI-1".
- (NSString*)localizedName;

@end
