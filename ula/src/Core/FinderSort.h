// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace tav::ula {

/// The positions of `texts` in the Finder's order of the texts; equal ones keep their order. Texts
/// are UTF-8; what is not sorts as an empty one.
std::vector<std::size_t> finderOrder(const std::vector<const std::string*>& texts);

}  // namespace tav::ula
