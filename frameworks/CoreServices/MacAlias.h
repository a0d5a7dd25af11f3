// SPDX-License-Identifier: MIT
#pragma once

#include "CoreServices/DesktopLink.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace coreservices {

// Where an alias leads that was made by the platform's own system, in either of its formats.
struct MacAlias {
    std::string volumeName;
    bool onStartupVolume = false;
    // Below the top of the volume; empty for the volume itself. Names as POSIX calls have them.
    std::vector<std::string> components;
    AliasKind kind = AliasKind::File;
};

// A name that can stand between two slashes and leads downwards.
bool isPlainComponent(const std::string& name);

// The names between the slashes. Fails: nothing when one of them is no plain component.
std::optional<std::vector<std::string>> plainComponents(std::string_view path);

}  // namespace coreservices
