// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/CommandDescription.h"

#include <string>

namespace tav::tool {

enum class Shell { Bash, Fish, Zsh };

/// What a shell reads to complete the tool's commands, options and values.
std::string completion(const CommandDescription& tool, Shell shell);

}  // namespace tav::tool
