// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/text/FastString.h"
#include "ula/foundation/xml/XmlDocumentRapid.h"

/// Getting the text of a document in UTF-8. Not installed: for readers of this library.
namespace tav::xml {

/// A text whose bytes its holder may change, as a parser that works in place does.
struct XmlText {
    String owner;  ///< keeps the buffer
    text::StringBuffer* buffer = nullptr;
    char* bytes = nullptr;
    std::size_t length = 0;

    std::string_view view() const { return {bytes, length}; }
    bool contains(const char* position) const {
        return position >= owner.begin() && position < owner.end();
    }
    /// A string that shares the buffer, of bytes that lie in it.
    String share(const char* begin, std::size_t size) const {
        if (size == 0)
            return String();
        return String(buffer, static_cast<std::size_t>(begin - owner.begin()), size);
    }
};

/// Reads a regular file and turns it into UTF-8 without a byte order mark.
/// Fails: false, the reason in `error`.
TAV_FOUNDATION_API bool readXmlFile(const String& path, XmlText& text, XmlError& error);
/// The same for a copy of `source`.
bool copyXmlText(const String& source, XmlText& text, XmlError& error);

/// Sets line and column of the byte at `offset`.
void locate(std::string_view text, std::size_t offset, XmlError& error);

}  // namespace tav::xml
