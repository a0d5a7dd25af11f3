// SPDX-License-Identifier: MIT
#import "examples/lighttable/BarView.h"

#import "examples/lighttable/Look.h"

using namespace lighttable;

@implementation BarView

- (id)initWithFrame:(NSRect)frame lineAt:(NSRectEdge)edge {
    self = [super initWithFrame:frame];
    if (self != nil)
        _edge = edge;
    return self;
}

- (BOOL)isOpaque {
    return YES;
}

- (void)drawRect:(NSRect)dirty {
    (void)dirty;
    NSRect line, rest;
    NSDivideRect([self bounds], &line, &rest, 1, _edge);
    look::fill(rest, look::bar());
    look::fill(line, look::line());
}

@end
