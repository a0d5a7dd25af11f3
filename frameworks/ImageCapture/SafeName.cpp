// SPDX-License-Identifier: MIT
#include "ImageCapture/SafeName.h"

#include <cstdint>

namespace imagecapture {

namespace {

constexpr size_t kLongestName = 255;
constexpr size_t kLongestExtension = 16;

bool isContinuation(std::string_view text, size_t at) {
    return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80;
}

uint32_t codePoint(std::string_view text, size_t at, size_t length) {
    constexpr uint32_t kLeadBits[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
    uint32_t point = static_cast<unsigned char>(text[at]) & kLeadBits[length];
    for (size_t i = 1; i < length; ++i)
        point = (point << 6) | (static_cast<unsigned char>(text[at + i]) & 0x3F);
    return point;
}

// Of the character there; 0 where there is none. Surrogates and longer forms than needed are none.
size_t characterLength(std::string_view text, size_t at) {
    auto lead = static_cast<unsigned char>(text[at]);
    size_t length = lead < 0x80 ? 1 : lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (lead > 0xF4)
        return 0;
    for (size_t i = 1; i < length; ++i)
        if (!isContinuation(text, at + i))
            return 0;
    if (length < 3)
        return length;
    uint32_t point = codePoint(text, at, length);
    bool isSurrogate = point >= 0xD800 && point < 0xE000;
    bool isOverlong = point < (length == 3 ? 0x800u : 0x10000u);
    return isSurrogate || isOverlong || point > 0x10FFFF ? 0 : length;
}

// Control characters of both sets, and those that turn the direction of what follows: "gpj.exe"
// must not look like "exe.jpg".
bool isHarmful(uint32_t point) {
    return point == '/' || point < 0x20 || (point >= 0x7F && point < 0xA0) ||
           (point >= 0x202A && point <= 0x202E) || (point >= 0x2066 && point <= 0x2069);
}

// Without a part of a character at its end.
std::string_view cut(std::string_view text, size_t length) {
    if (text.size() <= length)
        return text;
    while (length > 0 && isContinuation(text, length))
        --length;
    return text.substr(0, length);
}

std::string shortened(const std::string& name) {
    size_t dot = name.rfind('.');
    bool hasExtension = dot != std::string::npos && name.size() - dot <= kLongestExtension;
    std::string extension = hasExtension ? name.substr(dot) : "";
    return std::string(cut(name, kLongestName - extension.size())) + extension;
}

}  // namespace

std::string safeName(std::string_view name) {
    std::string safe;
    for (size_t at = 0; at < name.size();) {
        size_t length = characterLength(name, at);
        bool isKept = length != 0 && !isHarmful(codePoint(name, at, length));
        if (isKept)
            safe += name.substr(at, length);
        else
            safe += '_';
        at += length == 0 ? 1 : length;
    }
    if (safe.empty())
        return "_";
    if (safe[0] == '.')
        safe[0] = '_';
    return safe.size() <= kLongestName ? safe : shortened(safe);
}

}  // namespace imagecapture
