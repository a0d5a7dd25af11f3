// SPDX-License-Identifier: MIT
#pragma once

#import <AppKit/AppKit.h>

/// A view that shows things from the top down, fills its place, and takes keys for the chosen one.
@interface ChoiceView : NSView
@end
