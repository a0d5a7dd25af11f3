// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"

#include <string>

/// What the file system model does to paths. Paths are UTF-8.
/// Thread: any.
namespace tav::ula::NSPathUtilNameSpace {

/// The name under which the start-up disk appears in "/Volumes": that of the first link to "/"
/// there, or the display name of "/". Found once in the life of the process.
ULA_API std::string nameForRootDisk();
/// The path as the library speaks of it: in this version the very same.
ULA_API std::string normalizeMacPathToRoot(const std::string& path);

}  // namespace tav::ula::NSPathUtilNameSpace

#ifdef __OBJC__

#import <Foundation/Foundation.h>

ULA_API
@interface NSPathUtil : NSObject

+ (NSString*)getNameForRootDisk;
/// An autoreleased copy.
+ (NSString*)normalizeToRootDisk:(NSString*)path;
/// Whether the item itself is a symbolic link; NO where there is none.
+ (BOOL)isLink:(NSString*)path;

@end

#endif
