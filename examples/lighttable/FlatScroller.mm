// SPDX-License-Identifier: MIT
#import "examples/lighttable/FlatScroller.h"

#import "examples/lighttable/Look.h"

#include <algorithm>
#include <cmath>

using namespace lighttable;

namespace {

constexpr CGFloat kLeastKnob = 32;

}  // namespace

@implementation FlatScroller

+ (CGFloat)scrollerWidth {
    return 12;
}

/// What there is to be seen of thousands of pictures would be a dot.
- (CGFloat)knobOfAtLeast:(CGFloat)proportion {
    return std::min<CGFloat>(1, std::max(proportion, kLeastKnob / NSHeight([self bounds])));
}

- (void)setKnobProportion:(CGFloat)proportion {
    [super setKnobProportion:[self knobOfAtLeast:proportion]];
}

- (void)setFloatValue:(float)value knobProportion:(CGFloat)proportion {
    [super setFloatValue:value knobProportion:[self knobOfAtLeast:proportion]];
}

/// Where there are no arrows no room is left for them either.
- (NSRect)rectForPart:(NSScrollerPart)part {
    const NSRect bounds = [self bounds];
    if (part == NSScrollerKnobSlot)
        return bounds;
    if (part != NSScrollerKnob)
        return [super rectForPart:part];
    const CGFloat height = std::floor(NSHeight(bounds) * [self knobProportion]);
    return NSMakeRect(0, std::floor((NSHeight(bounds) - height) * [self doubleValue]),
                      NSWidth(bounds), height);
}

- (void)drawRect:(NSRect)dirty {
    (void)dirty;
    NSView* const around = [self superview];
    NSColor* const background = [around isKindOfClass:[NSScrollView class]]
                                    ? [static_cast<NSScrollView*>(around) backgroundColor]
                                    : look::canvas();
    look::fill([self bounds], background);
    // None at all where everything is seen.
    if ([self knobProportion] >= 1 || [self knobProportion] <= 0 || ![self isEnabled])
        return;
    const NSRect knob = NSInsetRect([self rectForPart:NSScrollerKnob], 3, 2);
    look::fillRounded(knob, NSWidth(knob) / 2, look::outline());
}

@end

/// Without the lines that themes draw beside their scrollers.
@interface FlatScrollView : NSScrollView
@end

@implementation FlatScrollView

- (void)drawRect:(NSRect)dirty {
    look::fill(dirty, [self backgroundColor]);
}

@end

namespace lighttable {

NSScrollView* makeScrollView(NSRect frame, NSView* document, NSColor* background) {
    NSScrollView* const scrollView = [[[FlatScrollView alloc] initWithFrame:frame] autorelease];
    FlatScroller* const scroller = [[[FlatScroller alloc]
        initWithFrame:NSMakeRect(0, 0, [FlatScroller scrollerWidth], NSHeight(frame))] autorelease];
    [scroller setArrowsPosition:NSScrollerArrowsNone];
    [scrollView setVerticalScroller:scroller];
    [scrollView setHasVerticalScroller:YES];
    [scrollView setHasHorizontalScroller:NO];
    [scrollView setBorderType:NSNoBorder];
    [scrollView setBackgroundColor:background];
    [scrollView setDrawsBackground:YES];
    [scrollView setLineScroll:40];
    [scrollView setDocumentView:document];
    return scrollView;
}

}  // namespace lighttable
