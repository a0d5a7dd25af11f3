// SPDX-License-Identifier: MIT
// The commands that are given to the shell while an application moves. Whatever characters a path
// has, it is one word of them.
#pragma once

#import <Foundation/Foundation.h>

namespace tav::ula {

/// Ends with 0 when a program runs whose path has the bundle's in it.
NSString* runningCommand(NSString* bundle);

/// Waits for the end of the process, takes the mark of a download from the bundle and opens it.
NSString* relaunchCommand(int process, NSString* bundle);

/// Detaches a disk image when its application has had the time to end.
NSString* detachCommand(NSString* folder);

}  // namespace tav::ula
