// SPDX-License-Identifier: MIT
// The form from before XML: { key = value; }, ( member, member ), <data>, "texts" and words. All
// its values are texts, but GNUstep writes <*I5>, <*R1.5>, <*BY> and <*D…> for typed ones. A file
// of translations, which is the inside of a dictionary, is a list as well.
#include "CoreFoundation/PercentEscapes.h"
#include "Readers.h"
#include "Text.h"
#include "TextReader.h"
#include "Values.h"

#include <algorithm>

namespace cf::plist {

namespace {

bool isWordByte(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= '0' && byte <= '9') ||
           std::string_view("_$/:.-").find(byte) != std::string_view::npos ||
           static_cast<unsigned char>(byte) >= 0x80;
}

class OldStyleReader final : public TextReader {
public:
    OldStyleReader(std::string_view text, ObjectFactory& factory) : TextReader(text, factory) {}

private:
    Object readRoot() override;
    Object readObject(int depth);
    Object readDictionary(char end, int depth);
    Object readArray(int depth);
    Object readAngled();
    Object makeTyped(std::string_view text);
    bool readPair(int depth);
    bool readText(std::string_view& text);
    bool readQuoted(std::string_view& text);
    bool readEscape();
    std::uint32_t readDigits(std::uint32_t base, std::size_t most);

    /// And comments.
    bool skipBlanks() override;
};

Object OldStyleReader::readRoot() {
    if (!skipBlanks())
        return nullptr;
    const bool isMarked = startsHere('{') || startsHere('(') || startsHere('<');
    return isMarked ? readObject(0) : readDictionary('\0', 0);
}

Object OldStyleReader::readObject(int depth) {
    if (depth == kDeepestNesting)
        return failed("too many levels");
    if (take('{'))
        return readDictionary('}', depth);
    if (take('('))
        return readArray(depth);
    if (take('<'))
        return readAngled();
    std::string_view text;
    return readText(text) ? _factory.string(text) : nullptr;
}

/// `end` zero: that of the text.
Object OldStyleReader::readDictionary(char end, int depth) {
    const std::size_t begin = _stack.size();
    for (;;) {
        if (!skipBlanks())
            return nullptr;
        if (end == '\0' ? atEnd() : take(end))
            return _stack.takeDictionary(begin);
        if (!readPair(depth))
            return nullptr;
    }
}

/// A key alone stands for itself. The last semicolon may be missing.
bool OldStyleReader::readPair(int depth) {
    std::string_view text;
    if (!readText(text))
        return false;
    const Object key = _factory.key(text);
    _stack.push(key);
    if (!skipBlanks())
        return false;
    if (!take('='))
        _stack.push(_factory.retain(key));
    else if (!skipBlanks() || !_stack.push(readObject(depth + 1)))
        return false;
    return skipBlanks() && (take(';') || startsHere('}') || fail("\";\" is missing"));
}

Object OldStyleReader::readArray(int depth) {
    const std::size_t begin = _stack.size();
    for (;;) {
        if (!skipBlanks())
            return nullptr;
        if (take(')'))
            return _stack.takeArray(begin);
        if (!_stack.push(readObject(depth + 1)) || !skipBlanks())
            return nullptr;
        if (!take(',') && !startsHere(')'))
            return failed("\",\" is missing");
    }
}

/// Data, or what GNUstep marks as another type.
Object OldStyleReader::readAngled() {
    const std::size_t end = _text.find('>', _next);
    if (end == _text.npos)
        return failed("\">\" is missing");
    const std::string_view inside = _text.substr(_next, end - _next);
    const Object made = inside.starts_with('*') ? makeTyped(inside) : nullptr;
    if (made != nullptr) {
        _next = end + 1;
        return made;
    }
    std::string bytes;
    int high = -1;
    for (const char byte : inside) {
        const int digit = hexadecimalDigit(byte);
        if (digit < 0 && !isBlank(byte))
            return failed("data with what is no digit");
        if (digit >= 0 && high >= 0)
            bytes += static_cast<char>(high << 4 | digit);
        if (digit >= 0)
            high = high >= 0 ? -1 : digit;
    }
    _next = end + 1;
    return high < 0 ? _factory.data(bytes) : failed("data with half a byte");
}

Object OldStyleReader::makeTyped(std::string_view text) {
    if (text.size() < 3)
        return nullptr;
    const std::string_view value = text.substr(2);
    switch (text[1]) {
    case 'I':
        return makeInteger(value, _factory);
    case 'R':
        return makeReal(value, _factory);
    case 'B':
        return value == "Y" || value == "N" ? _factory.boolean(value == "Y") : nullptr;
    case 'D':
        return makeOldStyleDate(value, _factory);
    default:
        return nullptr;
    }
}

bool OldStyleReader::readText(std::string_view& text) {
    if (startsHere('"') || startsHere('\''))
        return readQuoted(text);
    const std::size_t begin = _next;
    while (!atEnd() && isWordByte(_text[_next]))
        ++_next;
    text = _text.substr(begin, _next - begin);
    return !text.empty() || fail(atEnd() ? "the text ends too early" : "a text is missing");
}

bool OldStyleReader::readQuoted(std::string_view& text) {
    const char quote = _text[_next++];
    _decoded.clear();
    while (!atEnd()) {
        const char byte = _text[_next++];
        if (byte == quote) {
            text = _decoded;
            return true;
        }
        if (byte != '\\')
            _decoded += byte;
        else if (!readEscape())
            return false;
    }
    return fail("the text ends too early");
}

std::uint32_t OldStyleReader::readDigits(std::uint32_t base, std::size_t most) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < most && !atEnd(); ++i) {
        const int digit = hexadecimalDigit(_text[_next]);
        if (digit < 0 || digit >= static_cast<int>(base))
            break;
        value = value * base + static_cast<std::uint32_t>(digit);
        ++_next;
    }
    return value;
}

/// What follows a backslash. \U tells a unit of UTF-16: of a pair the other half follows.
bool OldStyleReader::readEscape() {
    if (atEnd())
        return fail("the text ends too early");
    const char byte = _text[_next];
    if (byte >= '0' && byte <= '7') {
        appendCharacter(_decoded, readDigits(8, 3) & 0xFF);
        return true;
    }
    ++_next;
    if (byte == 'U' || byte == 'u') {
        std::uint32_t unit = readDigits(16, 4);
        const bool isHigh = unit >= 0xD800 && unit < 0xDC00;
        if (isHigh && (_text.substr(_next, 2) == "\\U" || _text.substr(_next, 2) == "\\u")) {
            _next += 2;
            const std::uint32_t low = readDigits(16, 4);
            unit = low >= 0xDC00 && low < 0xE000
                       ? 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00)
                       : 0xFFFD;
        }
        appendCharacter(_decoded, unit);
        return true;
    }
    constexpr std::string_view kLetters = "abfnrtv";
    const std::size_t letter = kLetters.find(byte);
    _decoded += letter == kLetters.npos ? byte : "\a\b\f\n\r\t\v"[letter];
    return true;
}

bool OldStyleReader::skipBlanks() {
    for (;;) {
        while (!atEnd() && isBlank(_text[_next]))
            ++_next;
        const std::string_view two = _text.substr(_next, 2);
        if (two != "//" && two != "/*")
            return true;
        const std::string_view end = two == "//" ? "\n" : "*/";
        const std::size_t found = _text.find(end, _next + 2);
        if (found == _text.npos && two == "/*")
            return fail("the end of a comment is missing");
        _next = std::min(found == _text.npos ? found : found + end.size(), _text.size());
    }
}

}  // namespace

Object readOldStyle(std::string_view text, ObjectFactory& factory, std::string& error) {
    return OldStyleReader(text, factory).read(error);
}

}  // namespace cf::plist
