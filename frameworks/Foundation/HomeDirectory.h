// SPDX-License-Identifier: MIT
// The user's home folder. GNUstep's NSHomeDirectory asks the password database alone; every other
// program on the system takes $HOME where it is set.
#pragma once

#import <Foundation/Foundation.h>

/// $HOME if it is an absolute path, else that of the password database, else the root folder.
/// Owner: autoreleased. Thread: any that has a pool.
extern "C" __attribute__((visibility("default"))) NSString* ULAHomeDirectory(void);

#define NSHomeDirectory ULAHomeDirectory
