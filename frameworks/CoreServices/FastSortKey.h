// SPDX-License-Identifier: MIT
#pragma once

#include "CoreServices/CollationTable.h"

namespace coreservices {

// The room fastSortKey needs for a text of that many code units.
size_t fastSortKeyRoom(size_t textLength);

// Writes the key of a text in the Finder's order, the same bytes as ICU's, and returns its length;
// 0 when the table does not cover the text.
size_t fastSortKey(const CollationTable& table, TextView text, uint8_t* key);

}  // namespace coreservices
