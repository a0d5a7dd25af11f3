// SPDX-License-Identifier: MIT
#pragma once

#import <AppKit/AppKit.h>

/// How far something is, as a thin rounded bar.
@interface ProgressBar : NSView {
@private
    double _fraction;
}

/// From 0 to 1.
- (void)setFraction:(double)fraction;

@end
