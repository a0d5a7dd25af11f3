// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace coreservices {

// What an alias leads to, as far as the alias itself tells.
enum class AliasKind { File, Folder, Disk };

// A desktop entry of the type Link that leads to an item of the file system, here or on the
// network.
struct DesktopLink {
    std::string path;                  // absolute; empty for a place on the network
    std::string url;                   // "smb://server/share", as written; empty for a path
    AliasKind hint = AliasKind::File;  // what the target would be if it cannot be looked at
};

// Fails: nothing for text that is no such entry: other types, deleted ones, links to web pages.
std::optional<DesktopLink> parseDesktopLink(std::string_view text);

// Whether the beginning of an entry already tells that the whole is no link.
bool isOtherDesktopEntry(std::string_view beginning);

// The path in "file:" URLs of this host and in absolute paths, else empty.
std::string localPath(std::string_view url);

}  // namespace coreservices
