// SPDX-License-Identifier: MIT
// The types and the ownership rules that every part of CoreFoundation shares.
//
// An object got from a function with Create or Copy in its name belongs to the caller, who ends
// with CFRelease; one got from any other function does not. Every object is a GNUstep object and
// the reference types may be cast to and from the class of the same name (CFStringRef, NSString*).
#pragma once

#include <stdbool.h>
#include <stdint.h>

#ifdef __cplusplus
#define CF_EXTERN_C_BEGIN extern "C" {
#define CF_EXTERN_C_END }
#else
#define CF_EXTERN_C_BEGIN
#define CF_EXTERN_C_END
#endif

#define CF_EXPORT extern __attribute__((visibility("default")))

CF_EXTERN_C_BEGIN

typedef unsigned char Boolean;
typedef uint8_t UInt8;
typedef int32_t SInt32;
typedef uint32_t UInt32;
typedef uint64_t UInt64;
typedef uint16_t UniChar;

typedef signed long CFIndex;
typedef unsigned long CFHashCode;
typedef unsigned long CFOptionFlags;

typedef const void* CFTypeRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFString* CFStringRef;
typedef struct __CFString* CFMutableStringRef;

typedef struct {
    CFIndex location;
    CFIndex length;
} CFRange;

static inline CFRange CFRangeMake(CFIndex location, CFIndex length) {
    CFRange range = {location, length};
    return range;
}

typedef CFIndex CFComparisonResult;
enum { kCFCompareLessThan = -1, kCFCompareEqualTo = 0, kCFCompareGreaterThan = 1 };
enum { kCFNotFound = -1 };

/// The only allocator: every allocator argument is accepted and unused.
#define kCFAllocatorDefault ((CFAllocatorRef)0)

CF_EXPORT CFTypeRef CFRetain(CFTypeRef object);
/// Unlike a release message this is not defined for null, as on the platform: it ends the program.
CF_EXPORT void CFRelease(CFTypeRef object);
CF_EXPORT CFIndex CFGetRetainCount(CFTypeRef object);
CF_EXPORT Boolean CFEqual(CFTypeRef object, CFTypeRef other);
CF_EXPORT CFHashCode CFHash(CFTypeRef object);
CF_EXPORT CFStringRef CFCopyDescription(CFTypeRef object);

CF_EXTERN_C_END
