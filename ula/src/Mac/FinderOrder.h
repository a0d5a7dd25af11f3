// SPDX-License-Identifier: MIT
#pragma once

#include <CoreServices/CoreServices.h>

namespace tav::ula {

/// How the Finder compares names.
inline constexpr UCCollateOptions kFinderOrder =
    kUCCollateComposeInsensitiveMask | kUCCollateWidthInsensitiveMask |
    kUCCollateCaseInsensitiveMask | kUCCollatePunctuationSignificantMask |
    kUCCollateDigitsOverrideMask | kUCCollateDigitsAsNumberMask;
static_assert(kFinderOrder == 0x3800E);

}  // namespace tav::ula
