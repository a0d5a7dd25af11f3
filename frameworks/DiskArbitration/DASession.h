// SPDX-License-Identifier: MIT
#pragma once

#include <CoreFoundation/CoreFoundation.h>

CF_EXTERN_C_BEGIN

typedef struct __DASession* DASessionRef;

/// Holds nothing: disks are looked up when they are asked about. Owner: the caller.
/// Thread: any, as everything here.
CF_EXPORT DASessionRef DASessionCreate(CFAllocatorRef allocator);

CF_EXTERN_C_END
