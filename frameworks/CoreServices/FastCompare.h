// SPDX-License-Identifier: MIT
#pragma once

#include "CoreServices/CollationTable.h"

#include <optional>

namespace coreservices {

// How two texts compare in the Finder's order: negative, zero or positive, as ICU has it.
// Fails: nothing when the table does not cover what the answer hangs on.
std::optional<int> fastCompare(const CollationTable& table, TextView left, TextView right);

}  // namespace coreservices
