// SPDX-License-Identifier: MIT
// Comparison of Unicode texts in the order of the user's language.
#pragma once

#include <CoreServices/MacTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef UInt32 UCCollateOptions;

enum {
    kUCCollateComposeInsensitiveMask = 1 << 1,
    kUCCollateWidthInsensitiveMask = 1 << 2,
    kUCCollateCaseInsensitiveMask = 1 << 3,
    kUCCollatePunctuationSignificantMask = 1 << 15,
    kUCCollateDigitsOverrideMask = 1 << 16,
    kUCCollateDigitsAsNumberMask = 1 << 17,
};

enum {
    kCollateInvalidOptions = -29501,
    kCollateMissingUnicodeTableErr = -29502,
    kCollateBufferTooSmall = -29506,
};

// Compares two UTF-16 texts in the order of the process's language (LC_ALL, LC_COLLATE, LANG, read
// once). `equivalent` tells whether the texts are equal under `options`; `order` is negative, zero
// or positive. Either may be null, not both.
// Thread: any. Each thread keeps collators of its own until it ends.
// Fails: paramErr for null texts with a length, kCollateInvalidOptions for option bits not named
// above, kCollateMissingUnicodeTableErr when the collation data cannot be loaded; the results are
// then untouched, nothing is logged.
__attribute__((visibility("default"))) OSStatus
UCCompareTextDefault(UCCollateOptions options, const UniChar* text1Ptr, UniCharCount text1Length,
                     const UniChar* text2Ptr, UniCharCount text2Length, Boolean* equivalent,
                     SInt32* order);

#ifdef __cplusplus
}
#endif
