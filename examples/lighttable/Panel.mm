// SPDX-License-Identifier: MIT
#import "examples/lighttable/Panel.h"

#include "examples/lighttable/Look.h"

using namespace lighttable;

@implementation Panel

- (id)initWithSize:(NSSize)size title:(NSString*)title heading:(NSString*)heading {
    self = [super initWithContentRect:NSMakeRect(0, 0, size.width, size.height)
                            styleMask:NSTitledWindowMask | NSClosableWindowMask
                              backing:NSBackingStoreBuffered
                                defer:NO];
    if (self == nil)
        return nil;
    [self setTitle:title];
    [self setReleasedWhenClosed:NO];
    [self setBackgroundColor:look::bar()];
    const NSRect place =
        NSMakeRect(kPanelMargin, size.height - 40, size.width - 2 * kPanelMargin, 20);
    NSTextField* const label = look::makeLabel(place, look::boldFont(14), look::text());
    [label setStringValue:heading];
    [[self contentView] addSubview:label];
    return self;
}

@end
