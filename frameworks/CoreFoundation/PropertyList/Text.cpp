// SPDX-License-Identifier: MIT
#include "Text.h"

#include <array>
#include <cstring>
#include <iconv.h>

namespace cf::plist {

namespace {

using Byte = unsigned char;

bool isContinuation(char byte) {
    return (static_cast<Byte>(byte) & 0xC0) == 0x80;
}

/// The length of the character at the front; 0 for none of UTF-8.
std::size_t characterLength(std::string_view bytes) {
    const auto byte = [&](std::size_t i) { return static_cast<Byte>(bytes[i]); };
    const Byte first = byte(0);
    if (first < 0x80)
        return 1;
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || bytes.size() < length)
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if (!isContinuation(bytes[i]))
            return 0;
    // The longer forms of shorter ones, surrogates, and what lies beyond Unicode.
    const bool isWrong = (first == 0xE0 && byte(1) < 0xA0) || (first == 0xED && byte(1) > 0x9F) ||
                         (first == 0xF0 && byte(1) < 0x90) || (first == 0xF4 && byte(1) > 0x8F);
    return isWrong ? 0 : length;
}

bool areEightOfAscii(const char* bytes) {
    std::uint64_t eight = 0;
    std::memcpy(&eight, bytes, sizeof eight);
    return (eight & 0x8080808080808080) == 0;
}

struct Mark {
    std::string_view bytes;
    const char* encoding;
    std::size_t skip;
};

/// Byte order marks, and how "<" and what follows it look without one. The longer ones first.
constexpr std::array kMarks = {
    Mark{{"\xFF\xFE\0\0", 4}, "UTF-32LE", 4}, Mark{{"\0\0\xFE\xFF", 4}, "UTF-32BE", 4},
    Mark{{"<\0\0\0", 4}, "UTF-32LE", 0},      Mark{{"\0\0\0<", 4}, "UTF-32BE", 0},
    Mark{{"\xFF\xFE", 2}, "UTF-16LE", 2},     Mark{{"\xFE\xFF", 2}, "UTF-16BE", 2},
    Mark{{"<\0", 2}, "UTF-16LE", 0},          Mark{{"\0<", 2}, "UTF-16BE", 0},
    Mark{{"\xEF\xBB\xBF", 3}, "UTF-8", 3},
};

/// What an XML declaration says, in upper case; "UTF-8" without one.
std::string declaredEncoding(std::string_view text) {
    const std::size_t end = text.find("?>");
    if (!text.starts_with("<?xml") || end == text.npos)
        return "UTF-8";
    const std::string_view declaration = text.substr(0, end);
    const std::size_t name = declaration.find("encoding");
    const std::size_t open = declaration.find_first_of("\"'", name == text.npos ? end : name);
    const std::size_t close =
        open == text.npos ? open : declaration.find(declaration[open], open + 1);
    if (close == text.npos)
        return "UTF-8";
    std::string encoding(declaration.substr(open + 1, close - open - 1));
    for (char& letter : encoding)
        if (letter >= 'a' && letter <= 'z')
            letter = static_cast<char>(letter - 'a' + 'A');
    return encoding;
}

/// Fails: false for an encoding that nobody knows and for bytes that are none of it.
bool convert(std::string_view bytes, const std::string& encoding, std::string& text) {
    const iconv_t converter = iconv_open("UTF-8", encoding.c_str());
    if (converter == reinterpret_cast<iconv_t>(-1))
        return false;
    text.resize(bytes.size() * 4 + 16);
    char* in = const_cast<char*>(bytes.data());
    char* out = text.data();
    std::size_t inLeft = bytes.size();
    std::size_t outLeft = text.size();
    const std::size_t result = iconv(converter, &in, &inLeft, &out, &outLeft);
    iconv_close(converter);
    text.resize(text.size() - outLeft);
    return result != static_cast<std::size_t>(-1);
}

}  // namespace

bool isUtf8(std::string_view bytes) {
    while (!bytes.empty()) {
        if (bytes.size() >= 8 && areEightOfAscii(bytes.data())) {
            bytes.remove_prefix(8);
            continue;
        }
        const std::size_t length = characterLength(bytes);
        if (length == 0)
            return false;
        bytes.remove_prefix(length);
    }
    return true;
}

bool decodeText(std::string_view bytes, std::string& storage, std::string_view& text,
                std::string& reason) {
    std::string encoding;
    for (const Mark& mark : kMarks)
        if (encoding.empty() && bytes.starts_with(mark.bytes)) {
            encoding = mark.encoding;
            bytes.remove_prefix(mark.skip);
        }
    if (encoding.empty())
        encoding = declaredEncoding(bytes);
    text = bytes;
    if (encoding != "UTF-8" && encoding != "UTF8") {
        if (!convert(bytes, encoding, storage)) {
            reason = "the text is not in the encoding \"" + encoding + "\"";
            return false;
        }
        text = storage;
    }
    if (!isUtf8(text) || text.find('\0') != text.npos)
        reason = "the text holds bytes that are no characters";
    return reason.empty();
}

void appendCharacter(std::string& text, std::uint32_t character) {
    const auto append = [&](std::uint32_t byte) { text += static_cast<char>(byte); };
    const auto more = [&](std::uint32_t bits) { append(0x80 | (bits & 0x3F)); };
    if (character > 0x10FFFF || (character >= 0xD800 && character < 0xE000))
        character = 0xFFFD;
    if (character < 0x80)
        return append(character);
    if (character < 0x800) {
        append(0xC0 | character >> 6);
    } else {
        if (character < 0x10000) {
            append(0xE0 | character >> 12);
        } else {
            append(0xF0 | character >> 18);
            more(character >> 12);
        }
        more(character >> 6);
    }
    more(character);
}

}  // namespace cf::plist
