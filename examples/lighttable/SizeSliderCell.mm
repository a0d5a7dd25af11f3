// SPDX-License-Identifier: MIT
#import "examples/lighttable/SizeSliderCell.h"

#import "examples/lighttable/Look.h"

#include <cmath>

using namespace lighttable;

namespace {

constexpr CGFloat kKnobSide = 14;

}  // namespace

@implementation SizeSliderCell

- (CGFloat)knobThickness {
    return kKnobSide;
}

- (NSRect)knobRectFlipped:(BOOL)isFlipped {
    (void)isFlipped;
    const double part =
        ([self doubleValue] - [self minValue]) / ([self maxValue] - [self minValue]);
    return NSMakeRect(NSMinX(_trackRect) + std::floor(part * (NSWidth(_trackRect) - kKnobSide)),
                      std::floor(NSMidY(_trackRect) - kKnobSide / 2), kKnobSide, kKnobSide);
}

- (void)drawInteriorWithFrame:(NSRect)frame inView:(NSView*)view {
    _trackRect = frame;
    look::fillRounded(NSMakeRect(NSMinX(frame), std::floor(NSMidY(frame)) - 1, NSWidth(frame), 3),
                      1.5, look::line());
    const NSRect knob = [self knobRectFlipped:[view isFlipped]];
    look::fillRounded(knob, kKnobSide / 2, [NSColor whiteColor]);
    look::strokeRounded(knob, kKnobSide / 2, look::quietText());
}

- (void)drawWithFrame:(NSRect)frame inView:(NSView*)view {
    [self drawInteriorWithFrame:frame inView:view];
}

- (BOOL)isOpaque {
    return NO;
}

@end

namespace lighttable {

NSSlider* makeSizeSlider(NSRect frame, int least, int most, id target, SEL action) {
    NSSlider* const slider = [[[NSSlider alloc] initWithFrame:frame] autorelease];
    [slider setCell:[[[SizeSliderCell alloc] init] autorelease]];
    [slider setMinValue:least];
    [slider setMaxValue:most];
    [slider setContinuous:YES];
    [slider setTarget:target];
    [slider setAction:action];
    return slider;
}

}  // namespace lighttable
