// SPDX-License-Identifier: MIT
#import "examples/lighttable/Look.h"

#include <algorithm>
#include <cmath>
#include <ula/ObjCHelper.h>

namespace lighttable::look {

namespace {

NSColor* colour(unsigned rgb) {
    const auto part = [rgb](int shift) {
        return static_cast<CGFloat>((rgb >> shift) & 0xff) / 255;
    };
    return [NSColor colorWithCalibratedRed:part(16) green:part(8) blue:part(0) alpha:1];
}

NSDictionary* attributes(NSFont* font, NSColor* colour) {
    return [NSDictionary dictionaryWithObjectsAndKeys:font, NSFontAttributeName, colour,
                                                      NSForegroundColorAttributeName, nil];
}

CGFloat widthOf(NSString* text, NSFont* font) {
    return [text sizeWithAttributes:attributes(font, look::text())].width;
}

/// With so many letters of it left.
NSString* cut(NSString* text, NSUInteger letters) {
    const NSUInteger back = letters / 2;
    const NSUInteger front = letters - back;
    return [NSString stringWithFormat:@"%@…%@", [text substringToIndex:front],
                                      [text substringFromIndex:[text length] - back]];
}

}  // namespace

NSColor* canvas() {
    return colour(0xfafbfc);
}
NSColor* sidebar() {
    return colour(0xeef0f3);
}
NSColor* bar() {
    return colour(0xf4f5f7);
}
NSColor* line() {
    return colour(0xd9dde2);
}
NSColor* outline() {
    return colour(0xc3c9d1);
}
NSColor* text() {
    return colour(0x1f2328);
}
NSColor* quietText() {
    return colour(0x6b7380);
}
NSColor* accent() {
    return colour(0x2f6fde);
}
NSColor* selection() {
    return colour(0xd5e3fb);
}
NSColor* warning() {
    return colour(0xb4541a);
}

NSFont* font(CGFloat size) {
    NSFont* const known = [NSFont fontWithName:@"DejaVuSans" size:size];
    return known != nil ? known : [NSFont systemFontOfSize:size];
}

NSFont* boldFont(CGFloat size) {
    NSFont* const known = [NSFont fontWithName:@"DejaVuSans-Bold" size:size];
    return known != nil ? known : [NSFont boldSystemFontOfSize:size];
}

NSString* fitted(NSString* text, NSFont* font, CGFloat width) {
    if (widthOf(text, font) <= width)
        return text;
    NSUInteger fits = 0, tooMany = [text length];
    while (fits + 1 < tooMany) {
        const NSUInteger middle = (fits + tooMany) / 2;
        (widthOf(cut(text, middle), font) <= width ? fits : tooMany) = middle;
    }
    return cut(text, fits);
}

void drawText(NSString* text, NSRect place, NSFont* font, NSColor* colour, Alignment alignment) {
    NSString* const shown = fitted(text, font, NSWidth(place));
    NSDictionary* const drawing = attributes(font, colour);
    const NSSize size = [shown sizeWithAttributes:drawing];
    NSPoint corner = place.origin;
    if (alignment == Alignment::Centre)
        corner.x += std::max(0.0, std::floor((NSWidth(place) - size.width) / 2));
    corner.y += std::floor((NSHeight(place) - size.height) / 2);
    [shown drawAtPoint:corner withAttributes:drawing];
}

void fill(NSRect rectangle, NSColor* colour) {
    [colour set];
    NSRectFill(rectangle);
}

void fillRounded(NSRect rectangle, CGFloat radius, NSColor* colour) {
    [colour set];
    [[NSBezierPath bezierPathWithRoundedRect:rectangle xRadius:radius yRadius:radius] fill];
}

void strokeRounded(NSRect rectangle, CGFloat radius, NSColor* colour) {
    [colour set];
    // Lines lie in the middle of their pixels.
    [[NSBezierPath bezierPathWithRoundedRect:NSInsetRect(rectangle, 0.5, 0.5)
                                     xRadius:radius
                                     yRadius:radius] stroke];
}

void drawPixels(NSBitmapImageRep* pixels, NSRect place) {
    const NSSize size = NSMakeSize(static_cast<CGFloat>([pixels pixelsWide]),
                                   static_cast<CGFloat>([pixels pixelsHigh]));
    NSImage* const image = [[[NSImage alloc] initWithSize:size] autorelease];
    [image addRepresentation:pixels];
    [image drawInRect:place
              fromRect:NSZeroRect
             operation:NSCompositeSourceOver
              fraction:1
        respectFlipped:YES
                 hints:nil];
}

NSString* string(const std::string& text) {
    // A file's name need not be a text.
    NSString* const converted = [NSString stringWithUTF8String:text.c_str()];
    return converted != nil ? converted : @"?";
}

NSTextField* makeLabel(NSRect frame, NSFont* font, NSColor* colour) {
    NSTextField* const label = [[[NSTextField alloc] initWithFrame:frame] autorelease];
    [label setEditable:NO];
    [label setSelectable:NO];
    [label setBezeled:NO];
    [label setBordered:NO];
    [label setDrawsBackground:NO];
    [label setFont:font];
    [label setTextColor:colour];
    return label;
}

}  // namespace lighttable::look
