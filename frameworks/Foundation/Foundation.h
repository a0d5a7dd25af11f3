// SPDX-License-Identifier: MIT
// GNUstep's Foundation, and what it lacks or answers differently, under the platform's names.
#pragma once

#include_next <Foundation/Foundation.h>

#ifdef __OBJC__
#import "Foundation/HomeDirectory.h"
#import "Foundation/NSFileManager+Folders.h"
#import "Foundation/NSFileManager+Links.h"
#import "Foundation/SearchPaths.h"
#import "Foundation/TemporaryDirectory.h"
#import "Foundation/UserName.h"
#endif
