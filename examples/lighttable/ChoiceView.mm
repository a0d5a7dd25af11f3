// SPDX-License-Identifier: MIT
#import "examples/lighttable/ChoiceView.h"

@implementation ChoiceView

- (BOOL)isFlipped {
    return YES;
}

- (BOOL)isOpaque {
    return YES;
}

- (BOOL)acceptsFirstResponder {
    return YES;
}

@end
