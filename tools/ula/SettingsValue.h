// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/SettingsStore.h"

#include <string>
#include <vector>

namespace tav::tool {

/// The value that words of a command line stand for. Fails: throws `CommandError`.
Setting parseValue(ula::SettingsType type, const std::vector<std::string>& words);
/// The same where nobody has said the type: several words are a string array; true and false a
/// bool; a whole number an int; a number with "." or an exponent a double; the rest a string.
Setting guessValue(const std::vector<std::string>& words);

/// "int", "string_array" and so on.
std::string typeText(const Setting& setting);
/// `SETTINGSTYPE_INVALID` for any other text.
ula::SettingsType typeOf(const std::string& text);

/// A single value as it stands in a file, unquoted; not for arrays.
std::string bareText(const Setting& setting);

}  // namespace tav::tool
