// SPDX-License-Identifier: MIT
// Reasons of failures. A CFErrorRef is an NSError*.
#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

typedef struct __CFError* CFErrorRef;

CF_EXPORT CFIndex CFErrorGetCode(CFErrorRef error);
/// A sentence in English.
CF_EXPORT CFStringRef CFErrorCopyDescription(CFErrorRef error);

CF_EXTERN_C_END
