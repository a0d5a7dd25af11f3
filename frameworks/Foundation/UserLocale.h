// SPDX-License-Identifier: MIT
// The user's language and region, as the variables say that every program on the system follows.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace foundation {

/// The value of a variable of the environment; empty where there is none.
using Variable = std::function<std::string(const char* name)>;

/// "sr_Latn_RS": the language of LC_MESSAGES in the region of LC_MONETARY, which is the one that
/// desktops set for a user's country beside those of single formats. Without any locale, or in the
/// "C" locale, "en_US_POSIX".
std::string localeIdentifier(const Variable& variable);

/// "pt-PT", "en": the languages of LANGUAGE, or the one of the messages, best first. The region is
/// told where it is not the one that the language implies. At least one.
std::vector<std::string> preferredLanguages(const Variable& variable);

/// Of this process.
std::string processVariable(const char* name);

}  // namespace foundation
