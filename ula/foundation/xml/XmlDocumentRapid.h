// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/text/FastString.h"
#include "ula/foundation/util/SharedPtr.h"
#include "ula/foundation/xml/XmlException.h"

#include <cstddef>
#include <memory>
#include <string>

namespace pugi {
struct xml_attribute_struct;
struct xml_node_struct;
}  // namespace pugi

namespace tav::xml {

class XmlDocumentRapid;

/// Where and why a text is no document.
struct XmlError {
    std::string path;        ///< empty for a text in memory
    std::string reason;      ///< e.g. "an element is not closed"
    std::size_t line = 0;    ///< from 1; 0 where the failure has no place, as with a missing file
    std::size_t column = 0;  ///< from 1. Units: bytes
    bool isMissing = false;  ///< there is no file at the path

    /// "PATH:LINE:COLUMN: REASON", without the parts that there are not.
    TAV_FOUNDATION_API std::string describe() const;
};

/// One attribute of an element, or none: then it counts as empty and as zero.
/// Owner: the document, which must outlive it.
class TAV_FOUNDATION_API AttributeIterator {
public:
    bool exists() const { return _attribute != nullptr; }
    /// The attribute's text. Shares the document's memory, which lives as long as such a string.
    String value() const;
    /// The text read as a number. Fails: 0; `isNumber`, if given, tells.
    int valueInt(bool* isNumber = nullptr) const;
    double valueDouble(bool* isNumber = nullptr) const;

private:
    friend class NodeIterator;
    AttributeIterator(pugi::xml_attribute_struct* attribute, const XmlDocumentRapid* document)
        : _attribute(attribute), _document(document) {}

    pugi::xml_attribute_struct* _attribute;
    const XmlDocumentRapid* _document;
};

/// A position among the child elements of an element; also names the element at it.
/// Owner: the document, which must outlive it.
class TAV_FOUNDATION_API NodeIterator {
public:
    /// The first child element; `endChildren()` when there is none.
    NodeIterator beginChildren() const;
    NodeIterator endChildren() const;
    /// To the next sibling element.
    NodeIterator& operator++();

    /// The element's tag name. Borrowed from the document: copies are on their own.
    String name() const;
    AttributeIterator findAttribute(const String& name) const;

    /// Appends an element after the children and returns its position.
    NodeIterator appendChild(const String& name);
    void appendAttribute(const String& name, const String& value);
    void appendAttribute(const String& name, const char* value);
    void appendAttribute(const String& name, int value);
    void appendAttribute(const String& name, double value);

    friend bool operator==(const NodeIterator& left, const NodeIterator& right) {
        return left._node == right._node && left._parent == right._parent;
    }

private:
    friend class XmlDocumentRapid;
    NodeIterator(pugi::xml_node_struct* node, pugi::xml_node_struct* parent,
                 const XmlDocumentRapid* document)
        : _node(node), _parent(parent), _document(document) {}

    pugi::xml_node_struct* _node;
    pugi::xml_node_struct* _parent;
    const XmlDocumentRapid* _document;
};

/// A document of elements and attributes; text between elements, comments, processing
/// instructions and document types are passed over when it is read. Entities that a document
/// declares are not expanded and nothing but the file itself is read.
///
/// Thread: one thread at a time, but strings taken from it are free of it.
class TAV_FOUNDATION_API XmlDocumentRapid {
public:
    /// Larger files are refused: a document takes up to about twenty times its text in memory.
    static constexpr std::size_t kLargestText = std::size_t{256} << 20;

    /// A document with only a root element.
    static util::SharedPtr<XmlDocumentRapid> create(const String& rootName);
    /// Reads a regular file in UTF-8, or in any encoding that the C library converts, named by a
    /// byte order mark or by the XML declaration.
    /// `strict` refuses what XML 1.0 calls not well-formed although it could be read: bytes that
    /// are no characters, references to entities that XML does not define, an attribute given
    /// twice, text outside the root. A second root element is always refused.
    /// Fails: empty; `error`, if given, tells why. Not logged.
    static util::SharedPtr<XmlDocumentRapid> load(const String& path, bool strict,
                                                  XmlError* error = nullptr);
    /// The same, strict, for a text in memory.
    static util::SharedPtr<XmlDocumentRapid> loadFromData(const String& xmlText,
                                                          XmlError* error = nullptr);

    ~XmlDocumentRapid();
    XmlDocumentRapid(const XmlDocumentRapid&) = delete;
    XmlDocumentRapid& operator=(const XmlDocumentRapid&) = delete;

    /// Writes the document through `filesystem::DurableFile`. `indent`: a line per element, tabs
    /// before it; otherwise no white space. `durable`: waits until it is on the disk.
    /// Fails: throws `XmlException`; the old file is whole.
    void save(const String& path, bool indent, bool durable) const;

    NodeIterator rootNode() const;
    /// An error that names the place of an element, for readers that find its content wrong. The
    /// place is looked up in the file as it is now.
    XmlError errorAt(const NodeIterator& element, const std::string& reason) const;

private:
    friend class AttributeIterator;
    friend class NodeIterator;
    struct TAV_FOUNDATION_LOCAL Content;

    XmlDocumentRapid();

    std::unique_ptr<Content> _content;
};

}  // namespace tav::xml
