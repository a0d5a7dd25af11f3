// SPDX-License-Identifier: MIT
// The window of an alert: icon, message, explanation, the box for not being asked again, buttons.
#pragma once

#import <AppKit/NSPanel.h>

@class NSAlert, NSButton;

@interface ULAAlertPanel : NSPanel {
    NSArray* _answers;
    CGFloat _top;
}

/// The box may be nil. The buttons are the alert's own.
- (id)initWithAlert:(NSAlert*)alert box:(NSButton*)box;

/// Shows it until a button is pressed, and gives the number of that button; -1 when something else
/// has ended it.
- (NSInteger)runUntilAnswered;

@end
