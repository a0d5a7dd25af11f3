// SPDX-License-Identifier: MIT
// The user's folder for temporary files. GNUstep's NSTemporaryDirectory does not know $TMPDIR,
// which every other program on the system takes where it is set.
#pragma once

#import <Foundation/Foundation.h>

/// $TMPDIR, without slashes at its end, if it is the absolute path of a folder in which this user
/// may make files; else GNUstep's answer, a folder that only this user can read. Owner:
/// autoreleased. Thread: any that has a pool.
extern "C" __attribute__((visibility("default"))) NSString* ULATemporaryDirectory(void);

#define NSTemporaryDirectory ULATemporaryDirectory
