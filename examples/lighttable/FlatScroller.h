// SPDX-License-Identifier: MIT
#pragma once

#import <AppKit/AppKit.h>

/// A scroller that is a rounded bar and nothing else.
@interface FlatScroller : NSScroller
@end

namespace lighttable {

/// Scrolls the view up and down. The background is what is seen around it.
NSScrollView* makeScrollView(NSRect frame, NSView* document, NSColor* background);

}  // namespace lighttable
