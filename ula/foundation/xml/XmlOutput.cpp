// SPDX-License-Identifier: MIT
#include "ula/foundation/xml/XmlOutput.h"

#include "ula/foundation/text/NumberConversion.h"
#include "ula/foundation/xml/XmlCharacters.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

namespace tav::xml {

namespace {

/// "&quot;"; also more than the bytes of a character that a piece's end cuts through.
constexpr std::size_t kLongestEscape = 6;
constexpr std::size_t kPiece = 1024;

/// How a byte of an attribute's value is written.
enum Kind : unsigned char { Plain, Escaped, Checked };

constexpr std::array<Kind, 256> kKinds = [] {
    std::array<Kind, 256> kinds{};
    for (std::size_t byte = 0; byte < 0x20; ++byte)
        kinds[byte] = Checked;
    for (std::size_t byte = 0x80; byte < 0x100; ++byte)
        kinds[byte] = Checked;
    for (const char byte : {'&', '<', '>', '"', '\t', '\n', '\r'})
        kinds[static_cast<unsigned char>(byte)] = Escaped;
    return kinds;
}();

Kind kindOf(char byte) {
    return kKinds[static_cast<unsigned char>(byte)];
}

std::string_view escapeOf(char byte) {
    switch (byte) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    // As they are, a reader would turn these into blanks.
    case '\t':
        return "&#9;";
    case '\n':
        return "&#10;";
    default:
        return "&#13;";
    }
}

/// Writes the character at the begin of `text`, which is not a plain one, and returns how many
/// bytes it took there; 0 when XML cannot carry it.
std::size_t writeOdd(std::string_view text, char*& out) {
    const bool isEscaped = kindOf(text[0]) == Escaped;
    const std::size_t length = isEscaped ? 1 : characterLength(text);
    const std::string_view written = isEscaped ? escapeOf(text[0]) : text.substr(0, length);
    std::memcpy(out, written.data(), written.size());
    out += written.size();
    return length;
}

[[noreturn]] void throwInvalidValue(std::string_view attribute, std::string_view value,
                                    std::size_t position) {
    char byte[8];
    std::snprintf(byte, sizeof byte, "0x%02X", static_cast<unsigned char>(value[position]));
    throw XmlException(
        "XML cannot carry byte " + std::string(byte) + " at position " + std::to_string(position) +
        (attribute.empty() ? "" : " of attribute \"" + std::string(attribute) + "\""));
}

}  // namespace

XmlOutput::XmlOutput(Sink sink)
    : _sink(std::move(sink)), _buffer(std::make_unique_for_overwrite<char[]>(kSize)) {
}

/// Where the next bytes go, with room for `size` (up to the buffer's) of them.
char* XmlOutput::room(std::size_t size) {
    if (size > kSize - _used)
        flush();
    return _buffer.get() + _used;
}

void XmlOutput::appendLong(std::string_view text) {
    while (!text.empty()) {
        const std::string_view piece = text.substr(0, kSize);
        std::memcpy(room(piece.size()), piece.data(), piece.size());
        _used += piece.size();
        text.remove_prefix(piece.size());
    }
}

void XmlOutput::appendValue(std::string_view attributeName, const String& value) {
    const char* next = value.begin();
    const char* const end = value.end();
    while (next < end) {
        const char* const pieceEnd = next + std::min<std::ptrdiff_t>(kPiece, end - next);
        char* out = room(kPiece * kLongestEscape);
        while (next < pieceEnd) {
            const char byte = *next;
            if (kindOf(byte) == Plain) {
                *out++ = byte;
                ++next;
                continue;
            }
            const auto left = static_cast<std::size_t>(end - next);
            const std::size_t length = writeOdd({next, left}, out);
            if (length == 0)
                throwInvalidValue(attributeName, value.view(), value.length() - left);
            next += length;
        }
        _used = static_cast<std::size_t>(out - _buffer.get());
    }
}

void XmlOutput::appendValue(std::string_view, int value) {
    constexpr std::size_t kLongestInt = 11;
    char* out = room(kLongestInt);
    _used += static_cast<std::size_t>(std::to_chars(out, out + kLongestInt, value).ptr - out);
}

void XmlOutput::appendValue(std::string_view, double value) {
    char* out = room(text::kLongestDoubleText);
    _used += static_cast<std::size_t>(text::writeDouble(out, value) - out);
}

}  // namespace tav::xml
