// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/CommandDescription.h"

#include <string>

namespace tav::tool {

/// The page of a command for man(1), in the language of its macros: the tool's own with a list of
/// its commands, and one of each command with all below it.
std::string manualPage(const CommandDescription& command);
/// "ula-secret" for "ula secret".
std::string manualPageName(const CommandDescription& command);

}  // namespace tav::tool
