// SPDX-License-Identifier: MIT
#include "TextSource.h"

#include <cstdio>
#include <vector>

#include <unicode/ustring.h>
#include <unicode/utf16.h>

namespace texts {

namespace {

struct Range {
    char32_t first;
    char32_t last;
};

// Drawn from with equal chance each, so that what is rare in texts is not rare here.
constexpr Range kRanges[] = {
    {'0', '9'},         {'a', 'z'},         {'A', 'Z'},         {0x20, 0x7E},
    {0x00, 0x1F},       {0xA0, 0xFF},       {0x100, 0x24F},     {0x300, 0x36F},
    {0x300, 0x345},     {0x370, 0x3FF},     {0x400, 0x4FF},     {0x483, 0x487},
    {0x530, 0x5FF},     {0x600, 0x6FF},     {0x660, 0x669},     {0x900, 0x97F},
    {0xE00, 0xEFF},     {0xF40, 0xF84},     {0x1100, 0x11FF},   {0x1D00, 0x1DFF},
    {0x1E00, 0x1EFF},   {0x1F00, 0x1FFF},   {0x2000, 0x206F},   {0x2070, 0x218F},
    {0x2460, 0x24FF},   {0x3000, 0x303F},   {0x3040, 0x30FF},   {0x3400, 0x34FF},
    {0x4E00, 0x9FFF},   {0xAC00, 0xD7A3},   {0xD800, 0xDFFF},   {0xE000, 0xF8FF},
    {0xF900, 0xFAFF},   {0xFB00, 0xFDFF},   {0xFE00, 0xFE2F},   {0xFF00, 0xFFFF},
    {0x1D7CE, 0x1D7FF}, {0x1F300, 0x1F6FF}, {0x20000, 0x2A6DF}, {0x0000, 0xFFFF},
    {0x10000, 0x10FFFF}};

void append(std::u16string& text, char32_t codePoint) {
    if (codePoint < 0x10000) {
        text += static_cast<char16_t>(codePoint);
        return;
    }
    text += static_cast<char16_t>(U16_LEAD(codePoint));
    text += static_cast<char16_t>(U16_TRAIL(codePoint));
}

}  // namespace

void TextSource::appendAny(std::u16string& text) {
    const Range& range = kRanges[below(std::size(kRanges))];
    uint32_t count = 1 + below(3);
    for (uint32_t i = 0; i < count; ++i)
        append(text, range.first + below(range.last - range.first + 1));
}

void TextSource::appendLatin(std::u16string& text) {
    switch (below(12)) {
    case 0:
        text += static_cast<char16_t>(0xA0 + below(0x60));
        break;
    case 1:
        text += static_cast<char16_t>(0x300 + below(0x10));
        break;
    case 2:
    case 3:
    case 4:
        text += static_cast<char16_t>('0' + below(below(2) != 0 ? 10 : 2));
        break;
    case 5:
        text += static_cast<char16_t>(below(0x80));
        break;
    default:
        text += static_cast<char16_t>((below(2) != 0 ? 'a' : 'A') + below(6) * 5);
    }
}

std::u16string TextSource::anyText() {
    std::u16string text;
    for (uint32_t i = below(8); i > 0; --i)
        appendAny(text);
    return text;
}

std::u16string TextSource::latinText() {
    std::u16string text;
    for (uint32_t i = below(24); i > 0; --i)
        appendLatin(text);
    return text;
}

std::u16string TextSource::variant(const std::u16string& text, bool latin) {
    std::u16string changed = text;
    for (uint32_t changes = 1 + below(2); changes > 0; --changes) {
        std::u16string piece;
        latin ? appendLatin(piece) : appendAny(piece);
        size_t at = below(static_cast<uint32_t>(changed.size()) + 1);
        size_t removed = below(3);
        if (below(4) == 0 && at < changed.size())
            changed[at] = static_cast<char16_t>(u_toupper(changed[at]));
        else
            changed.replace(at, std::min(removed, changed.size() - at), below(4) ? piece : u"");
    }
    return changed;
}

UCollator* finderCollator(const char* locale) {
    UErrorCode status = U_ZERO_ERROR;
    UCollator* collator = ucol_open(locale, &status);
    ucol_setAttribute(collator, UCOL_STRENGTH, UCOL_SECONDARY, &status);
    ucol_setAttribute(collator, UCOL_CASE_LEVEL, UCOL_OFF, &status);
    ucol_setAttribute(collator, UCOL_NORMALIZATION_MODE, UCOL_ON, &status);
    ucol_setAttribute(collator, UCOL_NUMERIC_COLLATION, UCOL_ON, &status);
    ucol_setAttribute(collator, UCOL_ALTERNATE_HANDLING, UCOL_NON_IGNORABLE, &status);
    return U_SUCCESS(status) ? collator : nullptr;
}

int icuOrder(const UCollator* collator, const std::u16string& left, const std::u16string& right) {
    return ucol_strcoll(collator, left.data(), static_cast<int32_t>(left.size()), right.data(),
                        static_cast<int32_t>(right.size()));
}

std::string icuKey(const UCollator* collator, const std::u16string& text) {
    std::vector<uint8_t> key(text.size() * 80 + 64);
    int32_t length = ucol_getSortKey(collator, text.data(), static_cast<int32_t>(text.size()),
                                     key.data(), static_cast<int32_t>(key.size()));
    return {key.begin(), key.begin() + length};
}

std::string unitsOf(const std::u16string& text) {
    std::string units;
    for (char16_t unit : text) {
        char buffer[8];
        std::snprintf(buffer, sizeof buffer, "%04X ", static_cast<unsigned>(unit));
        units += buffer;
    }
    return units;
}

}  // namespace texts
