// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace coreservices {

// What launch services take an item for.
enum class ItemType {
    SymbolicLink,
    Folder,
    Package,            // a folder that is shown as one thing
    ApplicationBundle,  // a package that can be opened
    Volume,             // where a volume is mounted, or its link in /Volumes
    AliasFile,
    File,
    Other,  // a pipe, a socket, a device
};

// Links are not followed, except those of volumes in /Volumes. Fails: nothing, where nothing lies.
__attribute__((visibility("default"))) std::optional<ItemType> itemType(const std::string& path);

// Whether a folder of this name is a package; the case of its extension does not matter.
__attribute__((visibility("default"))) bool isPackageName(std::string_view name);
__attribute__((visibility("default"))) bool isApplicationName(std::string_view name);

}  // namespace coreservices
