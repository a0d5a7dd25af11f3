// SPDX-License-Identifier: MIT
#pragma once

#import <AppKit/AppKit.h>

#include "ApplicationServices/Display.h"

// A screen as it was when it was made. It does not change: a display that does gets another one.
@interface ULADisplayScreen : NSScreen {
    displays::Display _display;
    int _mainHeight;
}

- (id)initWithDisplay:(const displays::Display&)display mainHeight:(int)mainHeight;
- (const displays::Display&)display;
- (int)mainHeight;

@end
