// SPDX-License-Identifier: MIT
#pragma once

#import <AppKit/AppKit.h>

/// A plain area above or below the thumbnails, with a line where it meets them.
@interface BarView : NSView {
@private
    NSRectEdge _edge;
}

/// The line is at this edge: `NSMinYEdge` is the lower one.
- (id)initWithFrame:(NSRect)frame lineAt:(NSRectEdge)edge;

@end
