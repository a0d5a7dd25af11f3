// SPDX-License-Identifier: MIT
#include "ula/foundation/xml/XmlCharacters.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>

namespace tav::xml {

namespace {

bool isCharacter(std::uint32_t code) {
    if (code < 0x20)
        return code == '\t' || code == '\n' || code == '\r';
    return code <= 0xD7FF || (code >= 0xE000 && code <= 0xFFFD) ||
           (code >= 0x10000 && code <= 0x10FFFF);
}

constexpr std::size_t kBlock = 32;

/// Whether every byte of a block is an ASCII character of XML; written so that the compiler
/// looks at many bytes at once.
bool isPlainBlock(const char* block) {
    unsigned char odd = 0;
    for (std::size_t i = 0; i < kBlock; ++i) {
        const auto byte = static_cast<unsigned char>(block[i]);
        const bool isControl = byte < 0x20 && byte != '\t' && byte != '\n' && byte != '\r';
        odd =
            static_cast<unsigned char>(odd | static_cast<unsigned char>(isControl) | (byte & 0x80));
    }
    return odd == 0;
}

struct Entity {
    std::string_view name;
    char character;
};
constexpr std::array<Entity, 5> kEntities = {
    {{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}}};

bool decodeNumber(std::string_view name, std::uint32_t& code) {
    const bool isHexadecimal = name.substr(1, 1) == "x";
    const std::string_view digits = name.substr(isHexadecimal ? 2 : 1);
    const char* end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, code, isHexadecimal ? 16 : 10);
    return error == std::errc() && stop == end && isCharacter(code);
}

std::size_t referenceLength(std::string_view text) {
    std::uint32_t code = 0;
    return decodeReference(text, code);
}

/// A stretch of markup in which "&" is an ordinary character, by its begin and its end.
struct Opaque {
    std::string_view begin;
    std::string_view end;
};
constexpr std::array<Opaque, 4> kOpaque = {
    {{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}, {"<!DOCTYPE", ">"}}};

/// The position behind the opaque stretch that begins at `position`, or `position` itself.
std::size_t skipOpaque(std::string_view text, std::size_t position) {
    for (const Opaque& opaque : kOpaque) {
        if (text.substr(position, opaque.begin.size()) != opaque.begin)
            continue;
        std::size_t from = position + opaque.begin.size();
        // A document type may hold declarations in brackets.
        if (opaque.end == ">") {
            const std::size_t bracket = text.find_first_of("[>", from);
            if (bracket != std::string_view::npos && text[bracket] == '[')
                from = std::min(text.find("]", bracket), text.size());
        }
        const std::size_t end = text.find(opaque.end, from);
        return end == std::string_view::npos ? text.size() : end + opaque.end.size();
    }
    return position;
}

bool hasOnlyGoodReferences(std::string_view text) {
    for (std::size_t i = text.find('&'); i != std::string_view::npos; i = text.find('&', i + 1))
        if (referenceLength(text.substr(i)) == 0)
            return false;
    return true;
}

constexpr bool isNameStart(unsigned char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || byte == '_' ||
           byte == ':' || byte >= 0x80;
}

constexpr std::array<bool, 256> kNameBytes = [] {
    std::array<bool, 256> bytes{};
    for (int i = 0; i < 256; ++i) {
        const auto byte = static_cast<unsigned char>(i);
        bytes[byte] =
            isNameStart(byte) || (byte >= '0' && byte <= '9') || byte == '-' || byte == '.';
    }
    return bytes;
}();

}  // namespace

std::size_t characterLength(std::string_view text) {
    const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byteAt(0);
    if (lead < 0x80)
        return isCharacter(lead) ? 1 : 0;
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length)
        return 0;
    std::uint32_t code = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byteAt(i) & 0xC0) != 0x80)
            return 0;
        code = code << 6 | (byteAt(i) & 0x3F);
    }
    // The least code that needs this many bytes.
    constexpr std::array<std::uint32_t, 5> least = {0, 0, 0x80, 0x800, 0x10000};
    return code >= least[length] && isCharacter(code) ? length : 0;
}

std::size_t findInvalidCharacter(std::string_view text) {
    std::size_t position = 0;
    while (position < text.size()) {
        if (text.size() - position >= kBlock && isPlainBlock(text.data() + position)) {
            position += kBlock;
            continue;
        }
        const std::size_t end = std::min(position + kBlock, text.size());
        while (position < end) {
            const auto byte = static_cast<unsigned char>(text[position]);
            const bool isPlain = byte >= 0x20 && byte < 0x80;
            const std::size_t length = isPlain ? 1 : characterLength(text.substr(position, 4));
            if (length == 0)
                return position;
            position += length;
        }
    }
    return std::string_view::npos;
}

std::size_t decodeReference(std::string_view text, std::uint32_t& code) {
    // Zeros may lead a number; more of them than this is nobody's spelling.
    constexpr std::size_t kLongest = 32;
    const std::size_t end = text.substr(0, kLongest).find(';');
    if (end == std::string_view::npos)
        return 0;
    const std::string_view name = text.substr(1, end - 1);
    if (name.substr(0, 1) == "#")
        return decodeNumber(name, code) ? end + 1 : 0;
    for (const Entity& entity : kEntities) {
        if (entity.name == name) {
            code = static_cast<unsigned char>(entity.character);
            return end + 1;
        }
    }
    return 0;
}

char* encodeCharacter(std::uint32_t code, char* out) {
    const auto put = [&](std::uint32_t byte) { *out++ = static_cast<char>(byte); };
    const auto putRest = [&](int shift) { put(0x80 | (code >> shift & 0x3F)); };
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0 | code >> 6);
        putRest(0);
    } else if (code < 0x10000) {
        put(0xE0 | code >> 12);
        putRest(6);
        putRest(0);
    } else {
        put(0xF0 | code >> 18);
        putRest(12);
        putRest(6);
        putRest(0);
    }
    return out;
}

std::size_t findInvalidReference(std::string_view text) {
    // Nearly always so, and much cheaper than following the markup.
    if (hasOnlyGoodReferences(text))
        return std::string_view::npos;
    std::size_t position = 0;
    for (;;) {
        position = text.find_first_of("&<", position);
        if (position == std::string_view::npos)
            return position;
        if (text[position] == '<') {
            position = std::max(skipOpaque(text, position), position + 1);
            continue;
        }
        const std::size_t length = referenceLength(text.substr(position));
        if (length == 0)
            return position;
        position += length;
    }
}

bool isName(std::string_view text) {
    if (text.empty() || !isNameStart(static_cast<unsigned char>(text[0])))
        return false;
    return std::ranges::all_of(
        text, [](char byte) { return kNameBytes[static_cast<unsigned char>(byte)]; });
}

}  // namespace tav::xml
