// SPDX-License-Identifier: MIT
#pragma once

#include <CoreServices/CoreServices.h>

namespace tav::ula {

/// How the Finder compares names.
inline constexpr UCCollateOptions kFinderCollation =
    kUCCollateComposeInsensitiveMask | kUCCollateWidthInsensitiveMask |
    kUCCollateCaseInsensitiveMask | kUCCollatePunctuationSignificantMask |
    kUCCollateDigitsOverrideMask | kUCCollateDigitsAsNumberMask;
static_assert(kFinderCollation == 0x3800E);

}  // namespace tav::ula
