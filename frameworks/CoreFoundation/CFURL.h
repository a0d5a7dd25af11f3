// SPDX-License-Identifier: MIT
// Locations. A CFURLRef is an NSURL*.
#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

typedef const struct __CFURL* CFURLRef;

typedef CFIndex CFURLPathStyle;
/// The only style that has a meaning here.
enum { kCFURLPOSIXPathStyle = 0 };

/// A relative path is taken from the current folder. Fails: null for another style, a null path.
CF_EXPORT CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef allocator, CFStringRef path,
                                                 CFURLPathStyle style, Boolean isDirectory);
CF_EXPORT CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator,
                                                           const UInt8* path, CFIndex length,
                                                           Boolean isDirectory);
/// Without a final "/", except for the root. Fails: null for another style or a URL without path.
CF_EXPORT CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style);
/// Fails: false when the path with its final zero does not fit or the URL has none.
CF_EXPORT Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase,
                                                   UInt8* buffer, CFIndex bufferSize);
/// Owner: the URL. The text of the URL itself, with its escapes.
CF_EXPORT CFStringRef CFURLGetString(CFURLRef url);
CF_EXPORT CFStringRef CFURLCopyLastPathComponent(CFURLRef url);
CF_EXPORT Boolean CFURLHasDirectoryPath(CFURLRef url);

CF_EXTERN_C_END
