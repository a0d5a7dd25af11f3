// SPDX-License-Identifier: MIT
// The elements are few and have no attributes that matter, so there is no tree of a document: the
// objects are made as the text goes by. Document types are passed over, entities other than those
// of XML itself are refused, and nothing but the text is read.
#include "Readers.h"
#include "Text.h"
#include "TextReader.h"
#include "Values.h"

#include <algorithm>
#include <charconv>

namespace cf::plist {

namespace {

class XmlReader final : public TextReader {
public:
    XmlReader(std::string_view text, ObjectFactory& factory) : TextReader(text, factory) {}

private:
    struct Tag {
        std::string_view name;
        bool isEmpty = false;
    };

    Object readRoot() override;
    Object readElement(int depth);
    Object readContainer(const Tag& tag, int depth);
    bool readPair(int depth);
    Object readLeaf(const Tag& tag);
    Object makeLeaf(std::string_view name, std::string_view content);

    bool readTag(Tag& tag);
    bool readContent(const Tag& tag, std::string_view& content);
    bool readMixedContent(std::string_view& content);
    bool readReference();
    bool takeEnd(std::string_view name);

    /// And comments.
    bool skipBlanks() override;
    bool skipDocumentType();
    bool skipPast(std::string_view end) {
        const std::size_t found = _text.find(end, _next);
        if (found == _text.npos)
            return fail("\"" + std::string(end) + "\" is missing");
        _next = found + end.size();
        return true;
    }
};

/// With or without the element "plist" around it.
Object XmlReader::readRoot() {
    if (!skipBlanks())
        return nullptr;
    if (!startsHere("<plist"))
        return readElement(0);
    Tag plist;
    if (!readTag(plist) || plist.isEmpty || !skipBlanks())
        return failed("the list is empty");
    const Object root = readElement(0);
    if (root == nullptr)
        return nullptr;
    if (skipBlanks() && takeEnd(plist.name))
        return root;
    _factory.release(root);
    return failed("the end of the list is missing");
}

Object XmlReader::readElement(int depth) {
    Tag tag;
    if (!readTag(tag))
        return nullptr;
    if (tag.name != "dict" && tag.name != "array")
        return readLeaf(tag);
    if (depth == kDeepestNesting)
        return failed("too many levels");
    return readContainer(tag, depth);
}

Object XmlReader::readContainer(const Tag& tag, int depth) {
    const std::size_t begin = _stack.size();
    const bool isDictionary = tag.name == "dict";
    while (!tag.isEmpty) {
        if (!skipBlanks())
            return nullptr;
        if (startsHere("</")) {
            if (!takeEnd(tag.name))
                return nullptr;
            break;
        }
        if (isDictionary ? !readPair(depth) : !_stack.push(readElement(depth + 1)))
            return nullptr;
    }
    return isDictionary ? _stack.takeDictionary(begin) : _stack.takeArray(begin);
}

bool XmlReader::readPair(int depth) {
    Tag tag;
    std::string_view name;
    if (!startsHere("<key"))
        return fail("a key is missing");
    if (!readTag(tag) || tag.name != "key" || !readContent(tag, name))
        return fail("a key is missing");
    return _stack.push(_factory.key(name)) && skipBlanks() && _stack.push(readElement(depth + 1));
}

Object XmlReader::readLeaf(const Tag& tag) {
    const std::size_t begin = _next;
    std::string_view content;
    if (!readContent(tag, content))
        return nullptr;
    const Object leaf = makeLeaf(tag.name, content);
    if (leaf == nullptr) {
        _next = begin;
        fail("no value for \"" + std::string(tag.name) + "\"");
    }
    return leaf;
}

Object XmlReader::makeLeaf(std::string_view name, std::string_view content) {
    if (name == "string")
        return _factory.string(content);
    if (name == "integer")
        return makeInteger(content, _factory);
    if (name == "real")
        return makeReal(content, _factory);
    if (name == "true" || name == "false")
        return trimmed(content).empty() ? _factory.boolean(name == "true") : nullptr;
    if (name == "date")
        return makeDate(content, _factory);
    if (name == "data")
        return makeBase64Data(content, _factory);
    return nullptr;
}

/// Attributes are passed over: there is one, the version of the list.
bool XmlReader::readTag(Tag& tag) {
    if (!take("<"))
        return fail(atEnd() ? "the text ends too early" : "an element is missing");
    const std::size_t end = _text.find('>', _next);
    if (end == _text.npos)
        return fail("the text ends too early");
    std::string_view inside = _text.substr(_next, end - _next);
    tag.isEmpty = inside.ends_with('/');
    if (tag.isEmpty)
        inside.remove_suffix(1);
    tag.name = inside.substr(0, inside.find_first_of(" \t\r\n"));
    _next = end + 1;
    return true;
}

/// The text up to the end of the element, and past it.
bool XmlReader::readContent(const Tag& tag, std::string_view& content) {
    content = {};
    if (tag.isEmpty)
        return true;
    const std::size_t end = _text.find_first_of("<&", _next);
    if (end == _text.npos)
        return fail("the text ends too early");
    content = _text.substr(_next, end - _next);
    if (_text.substr(end).starts_with("</")) {
        _next = end;
        return takeEnd(tag.name);
    }
    return readMixedContent(content) && takeEnd(tag.name);
}

/// With references, comments and sections in it.
bool XmlReader::readMixedContent(std::string_view& content) {
    _decoded.clear();
    while (!startsHere("</")) {
        const std::size_t begin = _next;
        if (take("<![CDATA[")) {
            if (!skipPast("]]>"))
                return false;
            _decoded += _text.substr(begin + 9, _next - begin - 12);
        } else if (startsHere("<!--")) {
            if (!skipPast("-->"))
                return false;
        } else if (startsHere("&")) {
            if (!readReference())
                return false;
        } else {
            if (atEnd() || startsHere("<"))
                return fail("an element within a text");
            _next = std::min(_text.find_first_of("<&", _next), _text.size());
            _decoded += _text.substr(begin, _next - begin);
        }
    }
    content = _decoded;
    return true;
}

bool XmlReader::readReference() {
    const std::size_t end = _text.substr(_next, 16).find(';');
    if (end == _text.npos)
        return fail("a reference without an end");
    std::string_view name = _text.substr(_next + 1, end - 1);
    std::uint32_t character = 0;
    if (name.starts_with('#')) {
        const bool isHexadecimal = name.starts_with("#x");
        name.remove_prefix(isHexadecimal ? 2 : 1);
        const auto [stop, error] = std::from_chars(name.data(), name.data() + name.size(),
                                                   character, isHexadecimal ? 16 : 10);
        if (error != std::errc() || stop != name.data() + name.size() || character > 0x10FFFF)
            character = 0;
    } else {
        character = name == "lt"     ? '<'
                    : name == "gt"   ? '>'
                    : name == "amp"  ? '&'
                    : name == "quot" ? '"'
                    : name == "apos" ? '\''
                                     : 0;
    }
    if (character == 0)
        return fail("a reference to no character");
    appendCharacter(_decoded, character);
    _next += end + 1;
    return true;
}

bool XmlReader::takeEnd(std::string_view name) {
    const std::size_t begin = _next;
    if (take("</") && take(name)) {
        while (!atEnd() && isBlank(_text[_next]))
            ++_next;
        if (take(">"))
            return true;
    }
    _next = begin;
    return fail("the end of \"" + std::string(name) + "\" is missing");
}

/// Declarations and document types too: where they stand does not matter.
bool XmlReader::skipBlanks() {
    for (;;) {
        while (!atEnd() && isBlank(_text[_next]))
            ++_next;
        if (!startsHere("<!") && !startsHere("<?"))
            return true;
        const bool isDone = startsHere("<!--") ? skipPast("-->")
                            : startsHere("<?") ? skipPast("?>")
                                               : skipDocumentType();
        if (!isDone)
            return false;
    }
}

/// Its own declarations stand in brackets, with quoted texts that may hold any of these bytes.
bool XmlReader::skipDocumentType() {
    if (!take("<!DOCTYPE"))
        return fail("an unknown declaration");
    for (bool isInBrackets = false; !atEnd();) {
        const char byte = _text[_next++];
        if (byte == '"' || byte == '\'') {
            if (!skipPast(std::string_view(&byte, 1)))
                return false;
        } else if (byte == '<' && _text.substr(_next).starts_with("!--")) {
            if (!skipPast("-->"))
                return false;
        } else if (byte == '[' || byte == ']') {
            isInBrackets = byte == '[';
        } else if (byte == '>' && !isInBrackets) {
            return true;
        }
    }
    return fail("the text ends too early");
}

}  // namespace

Object readXml(std::string_view text, ObjectFactory& factory, std::string& error) {
    return XmlReader(text, factory).read(error);
}

}  // namespace cf::plist
