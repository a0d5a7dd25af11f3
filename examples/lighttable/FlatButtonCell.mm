// SPDX-License-Identifier: MIT
#import "examples/lighttable/FlatButtonCell.h"

#import "examples/lighttable/Look.h"

using namespace lighttable;

namespace {

constexpr CGFloat kRadius = 5;
constexpr CGFloat kBoxSide = 16;

NSButton* makeCelledButton(NSString* title, NSRect frame) {
    NSButton* const button = [[[NSButton alloc] initWithFrame:frame] autorelease];
    FlatButtonCell* const cell = [[[FlatButtonCell alloc] initTextCell:title] autorelease];
    [button setCell:cell];
    [button setFont:look::font(12)];
    return button;
}

void drawTick(NSRect box) {
    NSBezierPath* const tick = [NSBezierPath bezierPath];
    const auto point = [&](CGFloat x, CGFloat y) {
        return NSMakePoint(NSMinX(box) + x * kBoxSide, NSMinY(box) + y * kBoxSide);
    };
    [tick moveToPoint:point(0.24, 0.52)];
    [tick lineToPoint:point(0.43, 0.71)];
    [tick lineToPoint:point(0.77, 0.31)];
    [tick setLineWidth:2];
    [[NSColor whiteColor] set];
    [tick stroke];
}

}  // namespace

@implementation FlatButtonCell

- (BOOL)isSwitch {
    return [self showsStateBy] != NSNoCellMask;
}

- (void)drawSwitchInFrame:(NSRect)frame {
    const NSRect box = NSMakeRect(NSMinX(frame), NSMidY(frame) - kBoxSide / 2, kBoxSide, kBoxSide);
    const BOOL isOn = [self state] == NSOnState;
    look::fillRounded(box, 4, isOn ? look::accent() : [NSColor whiteColor]);
    if (isOn)
        drawTick(box);
    else
        look::strokeRounded(box, 4, look::outline());
    NSRect place = frame;
    place.origin.x += kBoxSide + 8;
    place.size.width -= kBoxSide + 8;
    look::drawText([self title], place, [self font], look::text());
}

- (NSColor*)fillColour {
    if ([[self keyEquivalent] isEqualToString:@"\r"] && [self isEnabled])
        return [self isHighlighted] ? look::text() : look::accent();
    return [self isHighlighted] ? look::selection() : [NSColor whiteColor];
}

- (NSColor*)textColour {
    if (![self isEnabled])
        return look::outline();
    return [[self keyEquivalent] isEqualToString:@"\r"] ? [NSColor whiteColor] : look::text();
}

- (void)drawWithFrame:(NSRect)frame inView:(NSView*)view {
    (void)view;
    if ([self isSwitch])
        return [self drawSwitchInFrame:frame];
    look::fillRounded(NSInsetRect(frame, 0.5, 0.5), kRadius, [self fillColour]);
    if ([self fillColour] != look::accent())
        look::strokeRounded(frame, kRadius, look::outline());
    look::drawText([self title], frame, [self font], [self textColour], look::Alignment::Centre);
}

- (BOOL)isOpaque {
    return NO;
}

- (void)highlight:(BOOL)flag withFrame:(NSRect)frame inView:(NSView*)view {
    (void)frame;
    [self setHighlighted:flag];
    [view setNeedsDisplay:YES];
}

@end

namespace lighttable {

NSButton* makeButton(NSString* title, NSRect frame, id target, SEL action) {
    NSButton* const button = makeCelledButton(title, frame);
    [button setButtonType:NSMomentaryPushInButton];
    [button setTarget:target];
    [button setAction:action];
    return button;
}

NSButton* makeDefaultButton(NSString* title, NSRect frame, id target, SEL action) {
    NSButton* const button = makeButton(title, frame, target, action);
    [button setKeyEquivalent:@"\r"];
    return button;
}

NSButton* makeCheckBox(NSString* title, NSRect frame) {
    NSButton* const button = makeCelledButton(title, frame);
    [button setButtonType:NSSwitchButton];
    return button;
}

}  // namespace lighttable
