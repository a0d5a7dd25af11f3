// SPDX-License-Identifier: MIT
#pragma once

#include "ula/NSPathUtil.h"

#import <Foundation/Foundation.h>

#include <string>

namespace tav::ula {

/// Where every volume has its name.
inline constexpr const char* kVolumesFolder = "/Volumes";
inline NSString* const kVolumesPrefix = @"/Volumes/";

/// The path of the start-up disk there.
inline std::string startupVolume() {
    return "/Volumes/" + NSPathUtilNameSpace::nameForRootDisk();
}

}  // namespace tav::ula
