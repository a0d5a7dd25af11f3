// SPDX-License-Identifier: MIT
// Points in time.
#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

/// Units: seconds.
typedef double CFTimeInterval;
/// Units: seconds since 2001-01-01 00:00:00 UTC.
typedef CFTimeInterval CFAbsoluteTime;

CF_EXPORT const CFTimeInterval kCFAbsoluteTimeIntervalSince1970;

CF_EXPORT CFAbsoluteTime CFAbsoluteTimeGetCurrent(void);

CF_EXTERN_C_END
