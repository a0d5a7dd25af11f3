// SPDX-License-Identifier: MIT
// The login name. GNUstep's NSUserName answers with that of another user where the password
// database does not know this one.
#pragma once

#import <Foundation/Foundation.h>

/// That of the password database, else $LOGNAME or $USER, else the user's number.
/// Owner: autoreleased. Thread: any that has a pool.
extern "C" __attribute__((visibility("default"))) NSString* ULAUserName(void);

#define NSUserName ULAUserName
