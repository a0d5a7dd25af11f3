// SPDX-License-Identifier: MIT
#include "RunLoop/Clock.h"

#include <CoreFoundation/CFDate.h>

const CFTimeInterval kCFAbsoluteTimeIntervalSince1970 = 978307200.0;

CFAbsoluteTime CFAbsoluteTimeGetCurrent(void) {
    return cf::absoluteTimeNow();
}
