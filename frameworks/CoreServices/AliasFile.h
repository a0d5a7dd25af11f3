// SPDX-License-Identifier: MIT
// Which files are alias files, and what they say. No file but the alias file itself is looked at.
#pragma once

#include "CoreServices/DesktopLink.h"
#include "CoreServices/MacAlias.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace coreservices {

// The file "._name" in which other systems' disks and shares keep what belongs to the file "name".
enum class Companion { Possible, Absent };

// Whether the file is worth opening to see whether it is an alias file: false for nearly every
// ordinary file, without a system call. `name` is the last component. An empty file can be an alias
// file by its companion alone.
__attribute__((visibility("default"))) bool
mayBeAliasFile(std::string_view name, uint64_t size, Companion companion = Companion::Possible);

using AliasContent = std::variant<DesktopLink, MacAlias>;

// What the alias file says; nothing when the path names no alias file, or none that can be read
// (errno then tells why). A link in the last place is not followed; only regular files are opened.
__attribute__((visibility("default"))) std::optional<AliasContent>
readAliasFile(const std::string& path);

// Whether mayBeAliasFile and readAliasFile agree on it. Mostly one read of 4 KB.
__attribute__((visibility("default"))) bool isAliasFile(const std::string& path);

}  // namespace coreservices
