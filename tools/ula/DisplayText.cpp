// SPDX-License-Identifier: MIT
#include "tools/ula/DisplayText.h"

#include <array>
#include <clocale>
#include <cstdio>
#include <cwchar>

namespace tav::tool {

namespace {

struct Character {
    char32_t code = 0;
    std::size_t length = 1;
    bool isValid = false;
};

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// The first character of a text that is not empty.
Character decode(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text[0]);
    if (lead < 0x80)
        return {lead, 1, true};
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length)
        return {};
    char32_t code = lead & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if (!isContinuation(text[i]))
            return {};
        code = code << 6 | (static_cast<unsigned char>(text[i]) & 0x3F);
    }
    constexpr std::array<char32_t, 5> kLeast = {0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    return {code, length, code >= kLeast[length] && code <= 0x10FFFF && !isSurrogate};
}

/// Controls, and the marks that reorder what stands beside them.
bool steersTerminal(char32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || (code >= 0x2028 && code <= 0x202E) ||
           (code >= 0x2066 && code <= 0x2069) || code == 0x200E || code == 0x200F;
}

std::string escaped(char32_t code) {
    switch (code) {
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        break;
    }
    char text[16];
    std::snprintf(text, sizeof text, "\\u%04x", static_cast<unsigned>(code));
    return text;
}

std::string escapedByte(char byte) {
    char text[8];
    std::snprintf(text, sizeof text, "\\x%02x", static_cast<unsigned char>(byte));
    return text;
}

enum class Escapes { Bytes, Display, Quoted };

std::string escape(std::string_view text, Escapes escapes) {
    std::string result;
    while (!text.empty()) {
        const Character character = decode(text);
        if (!character.isValid)
            result += escapedByte(text[0]);
        else if (escapes != Escapes::Bytes && steersTerminal(character.code))
            result += escaped(character.code);
        else if (escapes == Escapes::Quoted && (text[0] == '"' || text[0] == '\\'))
            result += {'\\', text[0]};
        else
            result += text.substr(0, character.length);
        text.remove_prefix(character.length);
    }
    return result;
}

/// The system's table of widths, whatever the user's locale.
std::size_t widthOf(char32_t code) {
    static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t());
    if (code < 0x80 || !utf8)
        return 1;
    const locale_t before = uselocale(utf8);
    const int width = wcwidth(static_cast<wchar_t>(code));
    uselocale(before);
    return width < 0 ? 1 : static_cast<std::size_t>(width);
}

}  // namespace

std::string displayText(std::string_view text) {
    return escape(text, Escapes::Display);
}

std::string quotedText(std::string_view text) {
    return '"' + escape(text, Escapes::Quoted) + '"';
}

std::string validText(std::string_view text) {
    return escape(text, Escapes::Bytes);
}

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    while (!text.empty()) {
        const Character character = decode(text);
        width += character.isValid ? widthOf(character.code) : 1;
        text.remove_prefix(character.length);
    }
    return width;
}

std::string cutToWidth(const std::string& text, std::size_t width) {
    if (displayWidth(text) <= width)
        return text;
    std::string_view rest = text;
    std::size_t taken = 1;  // the ellipsis
    while (!rest.empty()) {
        const Character character = decode(rest);
        taken += character.isValid ? widthOf(character.code) : 1;
        if (taken > width)
            break;
        rest.remove_prefix(character.length);
    }
    return text.substr(0, text.size() - rest.size()) + "…";
}

std::string padded(const std::string& text, std::size_t width) {
    const std::size_t own = displayWidth(text);
    return text + std::string(own < width ? width - own : 1, ' ');
}

}  // namespace tav::tool
