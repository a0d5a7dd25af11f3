// SPDX-License-Identifier: MIT
#include "XmlWriter.h"

#include "Readers.h"

#include <CoreFoundation/CFNumber.h>
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <ctime>

namespace cf::plist {

namespace {

constexpr std::string_view kBegin =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist version=\"1.0\">\n";

/// What stands in for a byte: a reference, where the byte would be markup or where readers of XML
/// would take another for it; nothing for what XML does not have.
enum class Spelling : char { Itself, Reference, None };

constexpr std::array<Spelling, 256> kSpellings = [] {
    std::array<Spelling, 256> spellings{};
    for (std::size_t i = 0; i < 0x20; ++i)
        spellings[i] = Spelling::None;
    spellings['\t'] = spellings['\n'] = Spelling::Itself;
    for (const char byte : {'&', '<', '>', '\r'})
        spellings[static_cast<unsigned char>(byte)] = Spelling::Reference;
    return spellings;
}();

Spelling spellingOf(char byte) {
    return kSpellings[static_cast<unsigned char>(byte)];
}

std::string_view referenceFor(char byte) {
    return byte == '&' ? "&amp;" : byte == '<' ? "&lt;" : byte == '>' ? "&gt;" : "&#13;";
}

/// U+FFFE and U+FFFF, the only ones outside ASCII that XML does not have.
bool holdsNoncharacter(std::string_view text) {
    for (std::size_t i = text.find("\xEF\xBF"); i != text.npos; i = text.find("\xEF\xBF", i + 1))
        if (text[i + 2] == '\xBE' || text[i + 2] == '\xBF')
            return true;
    return false;
}

template <class Number>
void appendNumber(std::string& text, Number number) {
    char digits[32];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

void appendReal(std::string& text, double number) {
    if (std::isnan(number))
        text += "nan";
    else if (std::isinf(number))
        text += number < 0 ? "-infinity" : "+infinity";
    else
        appendNumber(text, number);
}

/// How many UTF-16 units a text in UTF-8 has.
std::size_t countUnits(std::string_view text) {
    std::size_t count = 0;
    for (const char byte : text) {
        const auto value = static_cast<unsigned char>(byte);
        count += (value & 0xC0) == 0x80 ? 0 : value >= 0xF0 ? 2 : 1;
    }
    return count;
}

bool isTruthValue(NSNumber* number) {
    const void* const object = number;
    return object == kCFBooleanTrue || object == kCFBooleanFalse;
}

}  // namespace

bool XmlWriter::write(id list, std::string& reason) {
    _text = kBegin;
    const bool isDone = writeObject(list);
    _text += "</plist>\n";
    reason = _reason;
    return isDone;
}

bool XmlWriter::writeObject(id object) {
    if (_level > kDeepestNesting)
        return fail("too many levels");
    writeTabs();
    if ([object isKindOfClass:[NSString class]])
        return writeString(object);
    if ([object isKindOfClass:[NSNumber class]])
        return writeNumber(object);
    if ([object isKindOfClass:[NSDictionary class]])
        return writeDictionary(object);
    if ([object isKindOfClass:[NSArray class]])
        return writeArray(object);
    if ([object isKindOfClass:[NSData class]])
        return writeData(object);
    if ([object isKindOfClass:[NSDate class]])
        return writeDate(object);
    return fail("an object that has no place in a list");
}

bool XmlWriter::writeNumber(NSNumber* number) {
    if (isTruthValue(number)) {
        _text += [number boolValue] ? "<true/>\n" : "<false/>\n";
        return true;
    }
    const char type = *[number objCType];
    const bool isReal = type == 'd' || type == 'f';
    _text += isReal ? "<real>" : "<integer>";
    if (isReal)
        appendReal(_text, [number doubleValue]);
    else if (type == 'Q' || type == 'L')
        appendNumber(_text, [number unsignedLongLongValue]);
    else
        appendNumber(_text, [number longLongValue]);
    _text += isReal ? "</real>\n" : "</integer>\n";
    return true;
}

bool XmlWriter::writeArray(NSArray* array) {
    if ([array count] == 0) {
        _text += "<array/>\n";
        return true;
    }
    _text += "<array>\n";
    ++_level;
    for (id member in array)
        if (!writeObject(member))
            return false;
    --_level;
    writeTabs();
    _text += "</array>\n";
    return true;
}

bool XmlWriter::writeDictionary(NSDictionary* dictionary) {
    std::string names;
    std::vector<Entry> entries;
    if ([dictionary count] == 0) {
        _text += "<dict/>\n";
        return true;
    }
    if (!collectEntries(dictionary, names, entries))
        return false;
    _text += "<dict>\n";
    ++_level;
    for (const Entry& entry : entries) {
        writeTabs();
        _text += "<key>";
        if (!writeEscaped(entry.key))
            return false;
        _text += "</key>\n";
        if (!writeObject(entry.value)) {
            _reason = "\"" + std::string(entry.key) + "\": " + _reason;
            return false;
        }
    }
    --_level;
    writeTabs();
    _text += "</dict>\n";
    return true;
}

/// Sorted, as on the platform: so a list is written in the same way whatever its history. The keys
/// lie in `names`.
bool XmlWriter::collectEntries(NSDictionary* dictionary, std::string& names,
                               std::vector<Entry>& entries) {
    std::vector<std::size_t> ends;
    for (id key in dictionary) {
        std::string_view text;
        if (![key isKindOfClass:[NSString class]])
            return fail("a key that is no text");
        if (!convert(key, text))
            return false;
        names += text;
        ends.push_back(names.size());
        entries.push_back({{}, [dictionary objectForKey:key]});
    }
    for (std::size_t i = 0, begin = 0; i < entries.size(); begin = ends[i++])
        entries[i].key = std::string_view(names).substr(begin, ends[i] - begin);
    std::sort(entries.begin(), entries.end(),
              [](const Entry& left, const Entry& right) { return left.key < right.key; });
    return true;
}

/// Into a buffer that the next call uses again.
bool XmlWriter::convert(NSString* string, std::string_view& text) {
    const std::size_t length = [string length];
    _characters.resize(length * 3 + 1);
    if (![string getCString:_characters.data()
                  maxLength:_characters.size()
                   encoding:NSUTF8StringEncoding])
        return fail("a text with half a character");
    text = _characters.data();
    if (text.size() != length && countUnits(text) != length)
        return fail("a text with a zero character");
    return true;
}

bool XmlWriter::writeString(NSString* string) {
    std::string_view text;
    if (!convert(string, text))
        return false;
    _text += "<string>";
    const bool isDone = writeEscaped(text);
    _text += "</string>\n";
    return isDone;
}

bool XmlWriter::writeEscaped(std::string_view text) {
    if (holdsNoncharacter(text))
        return fail("a text with a character that XML does not have");
    std::size_t begin = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const Spelling spelling = spellingOf(text[i]);
        if (spelling == Spelling::Itself)
            continue;
        if (spelling == Spelling::None)
            return fail("a text with a character that XML does not have");
        _text += text.substr(begin, i - begin);
        _text += referenceFor(text[i]);
        begin = i + 1;
    }
    _text += text.substr(begin);
    return true;
}

bool XmlWriter::writeData(NSData* data) {
    constexpr const char* kDigits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const auto* bytes = static_cast<const unsigned char*>([data bytes]);
    const std::size_t length = [data length];
    _text += "<data>";
    for (std::size_t i = 0; i < length; i += 3) {
        const auto byte = [&](std::size_t at) { return at < length ? bytes[at] : 0U; };
        const unsigned bits = byte(i) << 16 | byte(i + 1) << 8 | byte(i + 2);
        for (std::size_t digit = 0; digit < 4; ++digit)
            _text += i + digit > length ? '=' : kDigits[bits >> (18 - 6 * digit) & 63];
    }
    _text += "</data>\n";
    return true;
}

bool XmlWriter::writeDate(NSDate* date) {
    const double seconds = std::floor([date timeIntervalSince1970]);
    // The years that have four digits.
    if (!(seconds >= -62167219200.0 && seconds < 253402300800.0))
        return fail("a date that is too far away");
    const auto moment = static_cast<time_t>(seconds);
    std::tm parts{};
    gmtime_r(&moment, &parts);
    char text[32];
    const int length =
        std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02dZ", parts.tm_year + 1900,
                      parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec);
    _text += "<date>";
    _text.append(text, static_cast<std::size_t>(length));
    _text += "</date>\n";
    return true;
}

}  // namespace cf::plist
