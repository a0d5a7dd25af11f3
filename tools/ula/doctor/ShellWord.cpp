// SPDX-License-Identifier: MIT
#include "tools/ula/doctor/ShellWord.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <glib.h>
#include <string_view>

namespace tav::tool::doctor {

namespace {

bool isPlain(char character) {
    constexpr std::string_view kMarks = "_./:@%+=,-";
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9') ||
           kMarks.find(character) != std::string_view::npos;
}

bool isPrintable(char character) {
    return character >= ' ' && character <= '~';
}

/// Beside those of ASCII, characters are what the terminal shows.
bool needsEscape(char character) {
    return character == '\'' || (!isPrintable(character) && (character & 0x80) == 0);
}

std::string withEscapes(const std::string& text) {
    std::string word = "$'";
    for (const char character : text) {
        std::array<char, 8> piece{character};
        if (character == '\'' || character == '\\')
            piece = {'\\', character};
        else if (!isPrintable(character))
            std::snprintf(piece.data(), piece.size(), "\\%03o",
                          static_cast<unsigned>(static_cast<unsigned char>(character)));
        word += piece.data();
    }
    return word + "'";
}

}  // namespace

std::string shellWord(const std::string& text) {
    if (!text.empty() && std::ranges::all_of(text, isPlain))
        return text;
    const bool isQuotable =
        g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) &&
        std::ranges::none_of(text, needsEscape);
    return isQuotable ? "'" + text + "'" : withEscapes(text);
}

}  // namespace tav::tool::doctor
