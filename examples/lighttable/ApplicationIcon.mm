// SPDX-License-Identifier: MIT
#import "examples/lighttable/ApplicationIcon.h"

#import "examples/lighttable/Look.h"

namespace lighttable {

namespace {

constexpr CGFloat kSide = 64;

NSColor* rgb(CGFloat red, CGFloat green, CGFloat blue) {
    return [NSColor colorWithCalibratedRed:red green:green blue:blue alpha:1];
}

void drawHill(NSPoint left, NSPoint top, NSPoint right, NSColor* colour) {
    NSBezierPath* const hill = [NSBezierPath bezierPath];
    [hill moveToPoint:left];
    [hill lineToPoint:top];
    [hill lineToPoint:right];
    [hill closePath];
    [colour set];
    [hill fill];
}

void drawIcon() {
    look::fillRounded(NSMakeRect(3, 5, 58, 54), 7, look::outline());
    look::fillRounded(NSMakeRect(4, 6, 56, 52), 6, [NSColor whiteColor]);
    look::fill(NSMakeRect(9, 14, 46, 38), rgb(0.45, 0.68, 0.92));
    look::fillRounded(NSMakeRect(40, 38, 9, 9), 4.5, rgb(1, 0.93, 0.7));
    drawHill(NSMakePoint(9, 20), NSMakePoint(26, 44), NSMakePoint(44, 20), rgb(0.36, 0.5, 0.62));
    drawHill(NSMakePoint(24, 20), NSMakePoint(42, 36), NSMakePoint(55, 22), rgb(0.2, 0.36, 0.38));
    look::fill(NSMakeRect(9, 14, 46, 8), rgb(0.2, 0.36, 0.38));
}

}  // namespace

NSImage* makeApplicationIcon() {
    const NSSize size = NSMakeSize(kSide, kSide);
    NSImage* const drawing = [[[NSImage alloc] initWithSize:size] autorelease];
    [drawing lockFocus];
    drawIcon();
    NSBitmapImageRep* const pixels = [[[NSBitmapImageRep alloc]
        initWithFocusedViewRect:NSMakeRect(0, 0, kSide, kSide)] autorelease];
    [drawing unlockFocus];
    NSImage* const icon = [[[NSImage alloc] initWithSize:size] autorelease];
    [icon addRepresentation:pixels];
    return icon;
}

}  // namespace lighttable
