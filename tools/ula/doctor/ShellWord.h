// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tav::tool::doctor {

/// The text as one word of a command for bash, quoted if need be. Without control characters,
/// whatever it holds.
std::string shellWord(const std::string& text);

}  // namespace tav::tool::doctor
