// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>

namespace appkit {

inline constexpr std::string_view kTrashInfoSuffix = ".trashinfo";

// The text of an info file: where the item was and when, in local time, it was trashed.
std::string trashInfoText(std::string_view originalPath, std::time_t when);

struct TrashInfo {
    std::string path;  // on other file systems than the home trash's relative to their top
    std::string date;  // "2026-11-21T08:00:00", local time; these compare as texts
};

// Reads the text of an info file, other programs' too. Nothing when it has no path.
std::optional<TrashInfo> parseTrashInfo(std::string_view text);

// A name for an item in the trash: its own at attempt 0, then with a number before the extension.
// With kTrashInfoSuffix it is no longer than `maxLength` bytes; what is cut is cut between UTF-8
// characters.
std::string trashName(std::string_view leaf, unsigned attempt, size_t maxLength);

}  // namespace appkit
