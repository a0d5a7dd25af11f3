// SPDX-License-Identifier: MIT
#pragma once

#import <AppKit/AppKit.h>

/// A slider that is a line with a round knob.
@interface SizeSliderCell : NSSliderCell
@end

namespace lighttable {

NSSlider* makeSizeSlider(NSRect frame, int least, int most, id target, SEL action);

}  // namespace lighttable
