// SPDX-License-Identifier: MIT
#pragma once

#import <AppKit/AppKit.h>

/// A button without bevels; the one that Return presses is filled. Drawn with a box and a tick
/// when it is a switch.
@interface FlatButtonCell : NSButtonCell
@end

namespace lighttable {

NSButton* makeButton(NSString* title, NSRect frame, id target, SEL action);
/// Pressed by Return.
NSButton* makeDefaultButton(NSString* title, NSRect frame, id target, SEL action);
NSButton* makeCheckBox(NSString* title, NSRect frame);

}  // namespace lighttable
