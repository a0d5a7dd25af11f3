// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <ctime>
#include <string>
#include <string_view>

namespace appkit {

inline constexpr std::string_view kTrashInfoSuffix = ".trashinfo";

// The text of an info file: where the item was and when, in local time, it was trashed.
std::string trashInfoText(std::string_view originalPath, std::time_t when);

// A name for an item in the trash: its own at attempt 0, then with a number before the extension.
// With kTrashInfoSuffix it is no longer than `maxLength` bytes; what is cut is cut between UTF-8
// characters.
std::string trashName(std::string_view leaf, unsigned attempt, size_t maxLength);

}  // namespace appkit
