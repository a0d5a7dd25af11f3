// SPDX-License-Identifier: MIT
// GNUstep's AppKit, and what it lacks or answers differently, under the platform's names.
#pragma once

#include_next <AppKit/AppKit.h>

#ifdef __OBJC__
#import "AppKit/AppKitVersion.h"
#import "AppKit/NSAlert+Suppression.h"
#import <AppKit/NSRunningApplication.h>
#import <Foundation/Foundation.h>
#endif
