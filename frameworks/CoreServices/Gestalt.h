// SPDX-License-Identifier: MIT
// Numbers about the system.
// Thread: any.
#pragma once

#include <CoreFoundation/CFBase.h>
#include <CoreServices/MacTypes.h>

CF_EXTERN_C_BEGIN

enum {
    gestaltUnknownErr = -5550,
    gestaltUndefSelectorErr = -5551,
};

enum {
    /// 16 bits: the major number as two decimal digits, the other two as one each.
    gestaltSystemVersion = 0x73797376,        // 'sysv'
    gestaltSystemVersionMajor = 0x73797331,   // 'sys1'
    gestaltSystemVersionMinor = 0x73797332,   // 'sys2'
    gestaltSystemVersionBugFix = 0x73797333,  // 'sys3'
};

/// The release of the system, read afresh at each call.
/// Fails: not `noErr`, `response` untouched.
CF_EXPORT OSErr Gestalt(OSType selector, SInt32* response);

CF_EXTERN_C_END
