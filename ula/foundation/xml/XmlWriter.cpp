// SPDX-License-Identifier: MIT
#include "ula/foundation/xml/XmlWriter.h"

#include "ula/foundation/text/NumberConversion.h"
#include "ula/foundation/xml/XmlCharacters.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <cstring>

namespace tav::xml {

namespace {

constexpr std::size_t kBufferSize = 256 << 10;

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

Kind kindOf(char byte) {
    return kKinds[static_cast<unsigned char>(byte)];
}

void checkName(const String& name) {
    if (!isName(name.view()))
        throw XmlException("\"" + name.toStdString() + "\" is no name in XML");
}

[[noreturn]] void throwInvalidValue(std::string_view attribute, std::string_view value,
                                    std::size_t position) {
    char byte[8];
    std::snprintf(byte, sizeof byte, "0x%02X", static_cast<unsigned char>(value[position]));
    throw XmlException("XML cannot carry byte " + std::string(byte) + " at position " +
                       std::to_string(position) + " of attribute \"" + std::string(attribute) +
                       "\"");
}

}  // namespace

XmlWriter::XmlWriter(Sink sink, bool indent) : _sink(std::move(sink)), _indent(indent) {
    _buffer.resize(kBufferSize);
    append("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
}

void XmlWriter::append(std::string_view text) {
    while (text.size() > _buffer.size() - _used) {
        const std::size_t part = _buffer.size() - _used;
        std::memcpy(_buffer.data() + _used, text.data(), part);
        text.remove_prefix(part);
        _used = 0;
        _sink({_buffer.data(), _buffer.size()});
    }
    std::memcpy(_buffer.data() + _used, text.data(), text.size());
    _used += text.size();
}

void XmlWriter::startLine() {
    if (!_indent)
        return;
    append("\n");
    for (std::size_t i = 0; i < _open.size(); ++i)
        append("\t");
}

void XmlWriter::closeStartTag() {
    if (_startTagOpen)
        append(">");
    _startTagOpen = false;
}

void XmlWriter::beginElement(const String& name) {
    checkName(name);
    closeStartTag();
    startLine();
    append("<");
    append(name.view());
    _open.push_back(name);
    _startTagOpen = true;
}

void XmlWriter::endElement() {
    const String name = std::move(_open.back());
    _open.pop_back();
    if (_startTagOpen) {
        append("/>");
        _startTagOpen = false;
        return;
    }
    startLine();
    append("</");
    append(name.view());
    append(">");
}

void XmlWriter::attribute(const String& name, const String& value) {
    checkName(name);
    append(" ");
    append(name.view());
    append("=\"");
    appendValue(name.view(), value.view());
    append("\"");
}

void XmlWriter::attribute(const String& name, int value) {
    char digits[16];
    const char* end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    attribute(name, String::borrow(digits, static_cast<std::size_t>(end - digits)));
}

void XmlWriter::attribute(const String& name, double value) {
    char digits[text::kLongestDoubleText];
    const char* end = text::writeDouble(digits, value);
    attribute(name, String::borrow(digits, static_cast<std::size_t>(end - digits)));
}

void XmlWriter::appendValue(std::string_view attributeName, std::string_view value) {
    std::size_t position = 0;
    while (position < value.size()) {
        std::size_t end = position;
        while (end < value.size() && kindOf(value[end]) == Plain)
            ++end;
        append(value.substr(position, end - position));
        if (end == value.size())
            return;
        position = end;
        if (kindOf(value[position]) == Escaped) {
            append(escapeOf(value[position]));
            ++position;
            continue;
        }
        const std::size_t length = characterLength(value.substr(position));
        if (length == 0)
            throwInvalidValue(attributeName, value, position);
        append(value.substr(position, length));
        position += length;
    }
}

void XmlWriter::finish() {
    append("\n");
    _sink({_buffer.data(), _used});
    _used = 0;
}

}  // namespace tav::xml
