// SPDX-License-Identifier: MIT
#pragma once

#import <AppKit/AppKit.h>

#include <cmath>

namespace tav::ula {

/// The versions of AppKit after which more of it can be used.
inline constexpr double kAppKit10_4 = 824;
inline constexpr double kAppKit10_5 = 949;

/// Whether AppKit is newer than the version and all of that version's updates.
inline bool isAppKitNewerThan(double version) {
    return std::floor(NSAppKitVersionNumber) > version;
}

}  // namespace tav::ula
