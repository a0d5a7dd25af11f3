// SPDX-License-Identifier: MIT
#import "examples/lighttable/ProgressBar.h"

#import "examples/lighttable/Look.h"

#include <algorithm>

using namespace lighttable;

@implementation ProgressBar

- (void)setFraction:(double)fraction {
    _fraction = std::clamp(fraction, 0.0, 1.0);
    [self setNeedsDisplay:YES];
}

- (void)drawRect:(NSRect)dirty {
    (void)dirty;
    NSRect bar = [self bounds];
    const CGFloat radius = NSHeight(bar) / 2;
    look::fillRounded(bar, radius, look::line());
    bar.size.width *= _fraction;
    if (NSWidth(bar) >= 2 * radius)
        look::fillRounded(bar, radius, look::accent());
}

@end
