// SPDX-License-Identifier: MIT
#pragma once

#import <AppKit/AppKit.h>

/// A white box with a thin outline, and a text field in it.
@interface FieldBox : NSView
@end

namespace lighttable {

/// Adds a field with its name above it to a view. Owner: the view.
NSTextField* addField(NSView* view, NSString* name, NSRect frame, Class fieldClass);

}  // namespace lighttable
