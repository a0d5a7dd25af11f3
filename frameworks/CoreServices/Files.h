// SPDX-License-Identifier: MIT
// References to items of the file system.
#pragma once

#include <CoreFoundation/CFURL.h>
#include <CoreServices/MacTypes.h>

CF_EXTERN_C_BEGIN

/// Holds the item's path, so it does not follow the item when that is renamed or moved.
typedef struct FSRef {
    UInt8 hidden[4096];
} FSRef;

typedef struct HFSUniStr255 {
    UInt16 length;
    UniChar unicode[255];
} HFSUniStr255;

/// A link in the last place is referred to itself.
/// Fails: false where nothing lies, for URLs without a path and for paths that are too long.
CF_EXPORT Boolean CFURLGetFSRef(CFURLRef url, FSRef* fsRef);
/// The URL says whether the item is a folder now.
/// Fails: null for a path that is not UTF-8.
CF_EXPORT CFURLRef CFURLCreateFromFSRef(CFAllocatorRef allocator, const FSRef* fsRef);

/// The item at a path, "/" separated; of a link what it leads to. `isDirectory` may be null.
/// Fails: fnfErr where nothing lies; the reference then is as it was.
CF_EXPORT OSStatus FSPathMakeRef(const UInt8* path, FSRef* ref, Boolean* isDirectory);

CF_EXTERN_C_END

#ifdef __cplusplus
#include <string>

namespace coreservices {

/// Owner: the reference. Ends with a zero.
__attribute__((visibility("default"))) const char* pathOf(const FSRef& reference);

/// The item itself is not looked at. Fails: false for a path that is not absolute or too long; the
/// reference then is as it was.
__attribute__((visibility("default"))) bool setPath(FSRef& reference, const std::string& path);

}  // namespace coreservices
#endif
