// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

/// What the tool says to people, in their language. What programs read is never translated: JSON,
/// the names of commands, options and types, and values.
namespace tav::tool {

/// From now on the language of the user's environment; English before. To be called once at the
/// beginning, while there is one thread.
void speakUsersLanguage();

/// A text in the user's language, its %1, %2… replaced by the values.
std::string translated(const char* text);
std::string translated(const char* text, const std::vector<std::string>& values);
template <typename... Values>
std::string translated(const char* text, const std::string& first, const Values&... others) {
    return translated(text, std::vector<std::string>{first, others...});
}

/// Marks a text that is translated where it is shown.
constexpr const char* translatable(const char* text) {
    return text;
}

/// A text with its %1, %2… replaced.
std::string filled(std::string_view text, const std::vector<std::string>& values);

}  // namespace tav::tool
