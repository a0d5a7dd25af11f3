// SPDX-License-Identifier: MIT
#pragma once

#include "ula/SettingsBase.h"

#include <string_view>

namespace tav::ula {

/// The type that a file's text names; `SETTINGSTYPE_INVALID` for any other text. Silent.
SettingsType typeOfText(std::string_view text);
/// The text of a type; empty for `SETTINGSTYPE_INVALID` and anything else.
std::string_view textOfType(SettingsType type);

}  // namespace tav::ula
