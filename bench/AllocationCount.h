// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace tav::bench {

/// How often this program has asked for memory, in any library and any way. Programs that link
/// it have their own `malloc`; what they measure is counts and bytes, not times.
std::size_t allocationCount();

/// Units: bytes in use on the heap.
std::size_t heapBytes();

}  // namespace tav::bench
