// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

namespace coreservices {

// A key on its way through the sort: the eight bytes under comparison, the key from there on, and
// which item it belongs to.
struct SortedKey {
    uint64_t word;
    const uint8_t* rest;
    uint32_t item;
};

// Sorts by the keys at `rest`, which end at their only zero byte and have eight readable bytes
// behind it; keys that are equal come in the order of their items. Changes word and rest.
void sortKeys(std::vector<SortedKey>& keys);

}  // namespace coreservices
