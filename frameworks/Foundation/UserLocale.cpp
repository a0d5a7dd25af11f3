// SPDX-License-Identifier: MIT
#include "Foundation/UserLocale.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <optional>
#include <unicode/uloc.h>

namespace foundation {

namespace {

constexpr const char* kNoLocale = "en_US_POSIX";

struct LocaleParts {
    std::string language;
    std::string script;
    std::string region;

    std::string identifier() const {
        std::string text = language;
        for (const std::string* part : {&script, &region})
            text += part->empty() ? std::string() : '_' + *part;
        return text;
    }
};

bool isIn(const char* const* list, const std::string& text) {
    while (*list != nullptr && text != *list)
        ++list;
    return *list != nullptr;
}

std::string mapped(std::string_view text, int (*function)(int)) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [=](unsigned char letter) { return static_cast<char>(function(letter)); });
    return result;
}

/// What is an alphabet among the modifiers; "@euro" and "@valencia" are none.
std::string scriptOf(std::string_view modifier) {
    if (modifier == "latin")
        return "Latn";
    if (modifier == "cyrillic")
        return "Cyrl";
    return modifier == "devanagari" ? "Deva" : "";
}

/// The text up to the separator, which goes, too.
std::string_view takeUpTo(char separator, std::string_view& text) {
    const size_t end = text.find(separator);
    const std::string_view piece = text.substr(0, end);
    text.remove_prefix(end == text.npos ? text.size() : end + 1);
    return piece;
}

/// Of "sr_RS.UTF-8@latin". Fails: nothing for "C", "POSIX" and what names no language.
std::optional<LocaleParts> parse(std::string_view text) {
    std::string_view beforeModifier = takeUpTo('@', text);
    std::string_view name = takeUpTo('.', beforeModifier);
    LocaleParts parts;
    parts.language = mapped(takeUpTo('_', name), std::tolower);
    parts.region = mapped(name, std::toupper);
    parts.script = scriptOf(text);
    if (!isIn(uloc_getISOLanguages(), parts.language))
        return std::nullopt;
    if (!isIn(uloc_getISOCountries(), parts.region))
        parts.region.clear();
    return parts;
}

/// The locale of a category, as the C library looks it up: the first that is set counts, even where
/// it names nothing.
std::optional<LocaleParts> category(const Variable& variable, const char* name) {
    for (const char* candidate : {"LC_ALL", name, "LANG"})
        if (const std::string text = variable(candidate); !text.empty())
            return parse(text);
    return std::nullopt;
}

/// "de-AT", and "de" for "de_DE".
std::string languageTag(const LocaleParts& parts) {
    char shortest[ULOC_FULLNAME_CAPACITY];
    UErrorCode error = U_ZERO_ERROR;
    uloc_minimizeSubtags(parts.identifier().c_str(), shortest, sizeof shortest, &error);
    std::string tag = U_SUCCESS(error) ? shortest : parts.identifier();
    std::replace(tag.begin(), tag.end(), '_', '-');
    return tag;
}

}  // namespace

std::string localeIdentifier(const Variable& variable) {
    const auto language = category(variable, "LC_MESSAGES");
    const auto region = category(variable, "LC_MONETARY");
    if (!language && !region)
        return kNoLocale;
    LocaleParts parts = language.value_or(LocaleParts{"en", "", ""});
    if (region && !region->region.empty())
        parts.region = region->region;
    return parts.identifier();
}

std::vector<std::string> preferredLanguages(const Variable& variable) {
    std::vector<std::string> languages;
    const auto add = [&languages](const std::optional<LocaleParts>& parts) {
        const std::string tag = parts ? languageTag(*parts) : std::string();
        if (parts && std::find(languages.begin(), languages.end(), tag) == languages.end())
            languages.push_back(tag);
    };
    const auto messages = category(variable, "LC_MESSAGES");
    // As for every program's messages, the list is without effect where there is no locale.
    const std::string list = messages ? variable("LANGUAGE") : std::string();
    for (std::string_view rest = list; !rest.empty();)
        add(parse(takeUpTo(':', rest)));
    add(messages);
    if (languages.empty())
        languages.emplace_back("en");
    return languages;
}

std::string processVariable(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

}  // namespace foundation
