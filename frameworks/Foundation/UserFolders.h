// SPDX-License-Identifier: MIT
// Where the folders of a user lie by the rules that the Linux desktops share. Nothing is asked of
// the folders themselves, which may be missing.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace foundation {

// What the text of a user-dirs.dirs file says of a folder, "DOCUMENTS" for instance: an absolute
// path without slashes at its end. Of several lines the last one counts. Fails: nothing.
std::optional<std::string> folderInUserDirs(std::string_view text, std::string_view name,
                                            const std::string& home);

// What the file of this user says. Read anew when it has changed. Thread: any.
std::optional<std::string> userFolder(const char* name, const std::string& home);

// Where programs keep their data: $XDG_DATA_HOME, else ".local/share" in the home folder.
std::string dataFolder(const std::string& home);

}  // namespace foundation
