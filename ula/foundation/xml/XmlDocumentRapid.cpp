// SPDX-License-Identifier: MIT
#include "ula/foundation/xml/XmlDocumentRapid.h"

#include "ula/foundation/text/NumberConversion.h"
#include "ula/foundation/thread/ScratchPad.h"
#include "ula/foundation/xml/XmlCharacters.h"
#include "ula/foundation/xml/XmlFile.h"
#include "ula/foundation/xml/XmlText.h"
#include "ula/foundation/xml/XmlWriter.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <pugixml.hpp>
#include <vector>

namespace tav::xml {

namespace {

/// Kept: references decoded, line ends and white space of attributes as XML wants them. The
/// document level is kept too, to find what must not stand there.
constexpr unsigned kParseOptions =
    pugi::parse_escapes | pugi::parse_eol | pugi::parse_wconv_attribute | pugi::parse_fragment;

bool isElement(pugi::xml_node node) {
    return node.type() == pugi::node_element;
}

pugi::xml_node firstElementFrom(pugi::xml_node node) {
    while (node && !isElement(node))
        node = node.next_sibling();
    return node;
}

/// The element after `node` in document order, going down into children first; without recursion,
/// for a document may be nested as deep as it is long.
pugi::xml_node nextInDocument(pugi::xml_node node) {
    if (const pugi::xml_node child = node.first_child())
        return child;
    while (node) {
        if (const pugi::xml_node sibling = node.next_sibling())
            return sibling;
        node = node.parent();
    }
    return node;
}

bool isRepeatedAmongMany(pugi::xml_node node) {
    std::vector<std::string_view> names;
    for (const pugi::xml_attribute attribute : node.attributes())
        names.emplace_back(attribute.name());
    std::ranges::sort(names);
    return std::ranges::adjacent_find(names) != names.end();
}

bool hasRepeatedAttribute(pugi::xml_node node) {
    const pugi::xml_attribute first = node.first_attribute();
    pugi::xml_attribute later = first.next_attribute();
    constexpr int kFew = 8;
    for (int count = 1; later.internal_object(); later = later.next_attribute()) {
        if (++count > kFew)
            return isRepeatedAmongMany(node);
        for (pugi::xml_attribute earlier = first; earlier != later;
             earlier = earlier.next_attribute())
            if (std::strcmp(earlier.name(), later.name()) == 0)
                return true;
    }
    return false;
}

/// The first element that gives an attribute twice.
pugi::xml_node findRepeatedAttribute(pugi::xml_node root) {
    for (pugi::xml_node node = root; node; node = nextInDocument(node))
        if (hasRepeatedAttribute(node))
            return node;
    return {};
}

const char* zeroTerminated(const String& text) {
    return thread::globalScratchPad().zeroTerminated(text);
}

}  // namespace

struct XmlDocumentRapid::Content {
    pugi::xml_document document;
    /// What the document was parsed from and points into; empty for one that was created.
    XmlText text;
    String path;
    String source;  ///< of a document from memory

    pugi::xml_node root() const { return firstElementFrom(document.first_child()); }
    /// A string that shares the parsed text where the bytes lie in it.
    String share(const char* bytes) const {
        const std::size_t length = std::strlen(bytes);
        return text.contains(bytes) ? text.share(bytes, length) : String(bytes, length);
    }

    bool parse(bool strict, XmlError& error);
    bool checkText(XmlError& error) const;
    bool checkStructure(bool strict, std::size_t& offset, XmlError& error) const;
    /// The text as it was before parsing changed it.
    bool readAgain(XmlText& original) const;
    void locateAgain(std::size_t offset, XmlError& error) const;
    std::size_t offsetOf(pugi::xml_node node) const {
        const std::ptrdiff_t offset = node.offset_debug();
        return offset < 0 ? String::npos : static_cast<std::size_t>(offset);
    }
};

bool XmlDocumentRapid::Content::readAgain(XmlText& original) const {
    XmlError ignored;
    return path.empty() ? copyXmlText(source, original, ignored)
                        : readXmlFile(path, original, ignored);
}

void XmlDocumentRapid::Content::locateAgain(std::size_t offset, XmlError& error) const {
    XmlText original;
    if (offset != String::npos && readAgain(original))
        locate(original.view(), offset, error);
}

bool XmlDocumentRapid::Content::checkText(XmlError& error) const {
    std::size_t offset = findInvalidCharacter(text.view());
    if (offset != String::npos)
        error.reason = "not well-formed: a byte that is no character of XML";
    else if ((offset = findInvalidReference(text.view())) != String::npos)
        error.reason = "not well-formed: \"&\" without a reference that XML defines";
    else
        return true;
    locate(text.view(), offset, error);
    return false;
}

bool XmlDocumentRapid::Content::checkStructure(bool strict, std::size_t& offset,
                                               XmlError& error) const {
    const pugi::xml_node first = root();
    pugi::xml_node wrong;
    if (!first) {
        error.reason = "not well-formed: no element";
    } else if ((wrong = firstElementFrom(first.next_sibling()))) {
        error.reason = "not well-formed: a second root element";
    } else if (strict && (wrong = findRepeatedAttribute(first))) {
        error.reason = "not well-formed: an attribute is given twice";
    } else {
        for (const pugi::xml_node node : document.children())
            if (strict && !isElement(node))
                wrong = node;
        if (!wrong)
            return true;
        error.reason = "not well-formed: text outside the root element";
    }
    offset = wrong ? offsetOf(wrong) : 0;
    return false;
}

bool XmlDocumentRapid::Content::parse(bool strict, XmlError& error) {
    if (strict && !checkText(error))
        return false;
    const pugi::xml_parse_result result =
        document.load_buffer_inplace(text.bytes, text.length, kParseOptions, pugi::encoding_utf8);
    auto offset = static_cast<std::size_t>(std::max<std::ptrdiff_t>(result.offset, 0));
    if (!result)
        error.reason = std::string("not well-formed: ") + result.description();
    if (result && checkStructure(strict, offset, error))
        return true;
    locateAgain(offset, error);
    return false;
}

std::string XmlError::describe() const {
    std::string text = path;
    if (line != 0)
        text += (text.empty() ? "" : ":") + std::to_string(line) + ":" + std::to_string(column);
    return text.empty() ? reason : text + ": " + reason;
}

XmlException::~XmlException() = default;

String AttributeIterator::value() const {
    return exists() ? _document->_content->share(pugi::xml_attribute(_attribute).value())
                    : String();
}

int AttributeIterator::valueInt(bool* isNumber) const {
    int number = 0;
    const bool good = exists() && text::parseInt(value(), number);
    if (isNumber)
        *isNumber = good;
    return number;
}

double AttributeIterator::valueDouble(bool* isNumber) const {
    double number = 0;
    const bool good = exists() && text::parseDouble(value(), number);
    if (isNumber)
        *isNumber = good;
    return number;
}

NodeIterator NodeIterator::beginChildren() const {
    const pugi::xml_node child = firstElementFrom(pugi::xml_node(_node).first_child());
    return NodeIterator(child.internal_object(), _node, _document);
}

NodeIterator NodeIterator::endChildren() const {
    return NodeIterator(nullptr, _node, _document);
}

NodeIterator& NodeIterator::operator++() {
    _node = firstElementFrom(pugi::xml_node(_node).next_sibling()).internal_object();
    return *this;
}

String NodeIterator::name() const {
    return String::borrow(std::string_view(pugi::xml_node(_node).name()));
}

AttributeIterator NodeIterator::findAttribute(const String& name) const {
    const pugi::xml_attribute attribute = pugi::xml_node(_node).attribute(zeroTerminated(name));
    return AttributeIterator(attribute.internal_object(), _document);
}

NodeIterator NodeIterator::appendChild(const String& name) {
    const pugi::xml_node child = pugi::xml_node(_node).append_child(zeroTerminated(name));
    return NodeIterator(child.internal_object(), _node, _document);
}

void NodeIterator::appendAttribute(const String& name, const String& value) {
    pugi::xml_attribute attribute = pugi::xml_node(_node).append_attribute(zeroTerminated(name));
    attribute.set_value(zeroTerminated(value));
}

void NodeIterator::appendAttribute(const String& name, const char* value) {
    appendAttribute(name, String(value));
}

void NodeIterator::appendAttribute(const String& name, int value) {
    appendAttribute(name, text::itostr(value, 10));
}

void NodeIterator::appendAttribute(const String& name, double value) {
    appendAttribute(name, text::dtostr(value));
}

XmlDocumentRapid::XmlDocumentRapid() : _content(std::make_unique<Content>()) {
}

XmlDocumentRapid::~XmlDocumentRapid() = default;

util::SharedPtr<XmlDocumentRapid> XmlDocumentRapid::create(const String& rootName) {
    util::SharedPtr<XmlDocumentRapid> document(new XmlDocumentRapid);
    document->_content->document.append_child(zeroTerminated(rootName));
    return document;
}

util::SharedPtr<XmlDocumentRapid> XmlDocumentRapid::load(const String& path, bool strict,
                                                         XmlError* error) {
    XmlError reason;
    util::SharedPtr<XmlDocumentRapid> document(new XmlDocumentRapid);
    Content& content = *document->_content;
    content.path = path;
    if (!readXmlFile(path, content.text, reason) || !content.parse(strict, reason))
        document.reset();
    if (error)
        *error = reason;
    return document;
}

util::SharedPtr<XmlDocumentRapid> XmlDocumentRapid::loadFromData(const String& xmlText,
                                                                 XmlError* error) {
    XmlError reason;
    util::SharedPtr<XmlDocumentRapid> document(new XmlDocumentRapid);
    Content& content = *document->_content;
    content.source = xmlText;
    if (!copyXmlText(xmlText, content.text, reason) || !content.parse(true, reason))
        document.reset();
    if (error)
        *error = reason;
    return document;
}

NodeIterator XmlDocumentRapid::rootNode() const {
    return NodeIterator(_content->root().internal_object(), nullptr, this);
}

XmlError XmlDocumentRapid::errorAt(const NodeIterator& element, const std::string& reason) const {
    XmlError error;
    error.path = _content->path.toStdString();
    error.reason = reason;
    if (element._node)
        _content->locateAgain(_content->offsetOf(pugi::xml_node(element._node)), error);
    return error;
}

void XmlDocumentRapid::save(const String& path, bool indent, bool durable) const {
    XmlFile file(path, {durable, {}});
    XmlWriter writer(file.output(), indent);
    pugi::xml_node node = _content->root();
    while (node) {
        if (isElement(node)) {
            writer.beginElement(String::borrow(std::string_view(node.name())));
            for (const pugi::xml_attribute attribute : node.attributes())
                writer.attribute(String::borrow(std::string_view(attribute.name())),
                                 String::borrow(std::string_view(attribute.value())));
        }
        if (isElement(node) && node.first_child()) {
            node = node.first_child();
            continue;
        }
        for (;;) {
            if (isElement(node))
                writer.endElement();
            if (node == _content->root() || node.next_sibling())
                break;
            node = node.parent();
        }
        node = node == _content->root() ? pugi::xml_node() : node.next_sibling();
    }
    writer.finish();
    file.commit();
}

}  // namespace tav::xml
