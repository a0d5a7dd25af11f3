// SPDX-License-Identifier: MIT
#pragma once

#include "CoreServices/MacAlias.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace coreservices {

// Whether a file of this size that begins so may be an alias record and nothing else.
bool beginsAsAliasRecord(std::string_view bytes, uint64_t fileSize);

// Reads the older of the two formats, in its versions 2 and 3. Bytes that contradict themselves are
// no record. Fails: nothing when it is none or tells no path.
std::optional<MacAlias> parseAliasRecord(std::string_view bytes);

}  // namespace coreservices
