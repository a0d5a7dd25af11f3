// SPDX-License-Identifier: MIT
#pragma once

#import <AppKit/NSAlert.h>

@class NSButton;

/// Of alerts that are made by messages to NSAlert itself, and not of its subclasses.
@interface NSAlert (ULASuppression)

/// Whether the box is shown with which users say that they do not want to be asked again.
- (BOOL)showsSuppressionButton;
- (void)setShowsSuppressionButton:(BOOL)shows;
/// The box, whose text and looks may be changed, and whose state is the answer. Owner: the alert.
- (NSButton*)suppressionButton;

@end
