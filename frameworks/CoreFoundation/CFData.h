// SPDX-License-Identifier: MIT
// Bytes. A CFDataRef is an NSData*.
#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

typedef const struct __CFData* CFDataRef;

/// Copies the bytes.
CF_EXPORT CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length);
CF_EXPORT CFIndex CFDataGetLength(CFDataRef data);
/// Owner: the data.
CF_EXPORT const UInt8* CFDataGetBytePtr(CFDataRef data);

CF_EXTERN_C_END
