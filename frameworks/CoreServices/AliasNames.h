// SPDX-License-Identifier: MIT
#pragma once

#include "CoreServices/Files.h"

#include <string>
#include <string_view>

namespace coreservices {

// Bytes that are not UTF-8 become U+FFFD; what does not fit is left out.
HFSUniStr255 hfsName(std::string_view name);

// What the volume that a path lies on is called in the volumes folder, or where it is mounted.
std::string volumeNameOf(const std::string& path);

}  // namespace coreservices
