// SPDX-License-Identifier: MIT
#pragma once

#include "CoreServices/CollationTable.h"

namespace coreservices {

inline constexpr int kUndecided = 2;

// How two texts compare in the Finder's order: -1, 0 or 1, as ICU has it; kUndecided when the table
// does not cover what the answer hangs on.
int fastCompare(const CollationTable& table, TextView left, TextView right);

// The same for texts of two units and more that their first characters tell apart, as most pairs
// are; kUndecided for all others. Calls nothing, so that the caller's caller pays for nothing else.
inline int compareFirst(const CollationTable& table, const UniChar* left, const UniChar* right) {
    const Character* a = table.readyCharacter(left[0]);
    const Character* b = table.readyCharacter(right[0]);
    const Character* afterA = table.readyCharacter(left[1]);
    const Character* afterB = table.readyCharacter(right[1]);
    if (a == nullptr || b == nullptr || afterA == nullptr || afterB == nullptr)
        return kUndecided;
    auto special = ((a->kind | b->kind) & (kSeveral | kDigit | kOutside)) |
                   (a->refuses & afterA->kind) | (b->refuses & afterB->kind);
    if (special != 0 || a->primary == b->primary)
        return kUndecided;
    return a->primary < b->primary ? -1 : 1;
}

}  // namespace coreservices
