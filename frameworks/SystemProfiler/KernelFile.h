// SPDX-License-Identifier: MIT
// Files in which the kernel tells of the machine.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace systemprofiler {

/// The whole file without the blanks, line ends and zero bytes at its end. Fails: empty.
std::string readKernelFile(const std::string& path);

/// The number that the file, or the text, holds: decimal, or hexadecimal behind "0x".
/// Fails: nothing.
std::optional<uint64_t> readKernelNumber(const std::string& path);
std::optional<uint64_t> numberOf(std::string_view text);

/// Calls `line` with each line of "key : value" or "KEY=value", blanks around both gone; with two
/// empty texts for a line without either.
void forEachPair(std::string_view text, char separator,
                 const std::function<void(std::string_view key, std::string_view value)>& line);

/// The names in a folder, in the order of their numbers ("card2" before "card10"). Fails: none.
std::vector<std::string> namesIn(const std::string& folder);

}  // namespace systemprofiler
