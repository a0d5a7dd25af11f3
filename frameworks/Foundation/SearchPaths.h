// SPDX-License-Identifier: MIT
#pragma once

#import <Foundation/NSArray.h>
#import <Foundation/NSPathUtilities.h>

/// GNUstep's answer, but for two directories. NSApplicationDirectory is "Applications" in the home
/// folder first for the user, "/Applications" last for the machine, and between them and in the
/// system's domain every folder in which this system installs programs. NSDownloadsDirectory is the
/// user's folder of downloads as the desktop has it. Folders need not exist.
__attribute__((visibility("default"))) NSArray*
ULASearchPathForDirectoriesInDomains(NSSearchPathDirectory directory,
                                     NSSearchPathDomainMask domains, BOOL expandTilde);

#define NSSearchPathForDirectoriesInDomains ULASearchPathForDirectoriesInDomains
