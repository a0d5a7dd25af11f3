// SPDX-License-Identifier: MIT
#pragma once

#include "CoreServices/AliasPlaces.h"
#include "CoreServices/MacAlias.h"

#include <string>
#include <vector>

namespace coreservices {

// Where on this system the target of an alias may lie that was made on another, best first.
// `ownVolume` is where the volume is mounted that the alias file lies on.
std::vector<std::string> pathsOf(const MacAlias& alias, const std::string& ownVolume,
                                 const AliasPlaces& places);

}  // namespace coreservices
