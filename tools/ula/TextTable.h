// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace tav::tool {

using TableRow = std::vector<std::string>;

/// Prints rows of as many texts each, their columns under each other and the first row as the head.
/// `numbers`: columns that stand on the right; not the last one.
void printTable(const std::vector<TableRow>& rows, const std::set<std::size_t>& numbers = {});

}  // namespace tav::tool
