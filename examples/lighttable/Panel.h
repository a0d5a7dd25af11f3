// SPDX-License-Identifier: MIT
#pragma once

#import <AppKit/AppKit.h>

/// A window over the main one, with a heading above what its subclass puts into it.
@interface Panel : NSPanel

- (id)initWithSize:(NSSize)size title:(NSString*)title heading:(NSString*)heading;

@end

namespace lighttable {

/// Between the edge of a panel and what is in it.
constexpr CGFloat kPanelMargin = 20;

}  // namespace lighttable
