// SPDX-License-Identifier: MIT
#import "examples/lighttable/FieldBox.h"

#import "examples/lighttable/Look.h"

using namespace lighttable;

namespace {

/// Of the text, which fields write at their top.
constexpr CGFloat kLineHeight = 18;

}  // namespace

@implementation FieldBox

- (void)drawRect:(NSRect)dirty {
    (void)dirty;
    look::fillRounded(NSInsetRect([self bounds], 0.5, 0.5), 5, [NSColor whiteColor]);
    look::strokeRounded([self bounds], 5, look::outline());
}

@end

namespace lighttable {

NSTextField* addField(NSView* view, NSString* name, NSRect frame, Class fieldClass) {
    NSTextField* const label =
        look::makeLabel(NSMakeRect(NSMinX(frame), NSMaxY(frame) + 3, NSWidth(frame), 17),
                        look::font(11), look::quietText());
    [label setStringValue:name];
    [view addSubview:label];
    FieldBox* const box = [[[FieldBox alloc] initWithFrame:frame] autorelease];
    NSTextField* const field = [[[fieldClass alloc]
        initWithFrame:NSMakeRect(8, (NSHeight(frame) - kLineHeight) / 2, NSWidth(frame) - 16,
                                 kLineHeight)] autorelease];
    [field setBezeled:NO];
    [field setBordered:NO];
    [field setDrawsBackground:YES];
    [field setBackgroundColor:[NSColor whiteColor]];
    [field setTextColor:look::text()];
    [field setFont:look::font(12)];
    [box addSubview:field];
    [view addSubview:box];
    return field;
}

}  // namespace lighttable
