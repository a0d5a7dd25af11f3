// SPDX-License-Identifier: MIT
// Sequences. A CFArrayRef is an NSArray*.
#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

typedef const struct __CFArray* CFArrayRef;
typedef struct __CFArray* CFMutableArrayRef;

typedef struct {
    CFIndex version;
    const void* (*retain)(CFAllocatorRef allocator, const void* value);
    void (*release)(CFAllocatorRef allocator, const void* value);
    CFStringRef (*copyDescription)(const void* value);
    Boolean (*equal)(const void* value, const void* other);
} CFArrayCallBacks;

/// For arrays of objects, which are retained.
CF_EXPORT const CFArrayCallBacks kCFTypeArrayCallBacks;

/// Null call-backs store the values as they are and retain nothing.
CF_EXPORT CFArrayRef CFArrayCreate(CFAllocatorRef allocator, const void** values, CFIndex count,
                                   const CFArrayCallBacks* callBacks);
CF_EXPORT CFArrayRef CFArrayCreateCopy(CFAllocatorRef allocator, CFArrayRef array);
/// Only for objects: callBacks must be kCFTypeArrayCallBacks. Capacity is a hint.
CF_EXPORT CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 const CFArrayCallBacks* callBacks);

CF_EXPORT CFIndex CFArrayGetCount(CFArrayRef array);
/// Owner: the array.
CF_EXPORT const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);
CF_EXPORT Boolean CFArrayContainsValue(CFArrayRef array, CFRange range, const void* value);
CF_EXPORT void CFArrayAppendValue(CFMutableArrayRef array, const void* value);

CF_EXTERN_C_END
