// SPDX-License-Identifier: MIT
#pragma once

#import <AppKit/NSApplication.h>

/// The version of the platform's AppKit that this one is like, for programs that decide by it what
/// they may call. GNUstep says 824, and has since gained what came much later.
__attribute__((visibility("default"))) double ULAAppKitVersionNumber();

#define NSAppKitVersionNumber ULAAppKitVersionNumber()
