// SPDX-License-Identifier: MIT
#pragma once

#include "CoreServices/MacAlias.h"

#include <optional>
#include <string_view>

namespace coreservices {

// Whether a file begins as bookmark data does.
bool beginsAsBookmark(std::string_view bytes);

// Reads the newer of the two formats, a table of keys and values. Bytes that contradict themselves
// are no bookmark. Fails: nothing when it is none or has no path.
std::optional<MacAlias> parseBookmark(std::string_view bytes);

}  // namespace coreservices
