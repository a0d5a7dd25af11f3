// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/text/FastString.h"
#include "ula/foundation/xml/XmlDocumentRapid.h"

/// Getting the text of a document in UTF-8. Internal to the foundation.
namespace tav::xml {

/// A text whose bytes its holder may change, as a parser that works in place does.
struct XmlText {
    String owner;       ///< keeps the buffer
    char* bytes = nullptr;
    std::size_t length = 0;

    std::string_view view() const { return {bytes, length}; }
};

/// Reads a regular file and turns it into UTF-8 without a byte order mark.
/// Fails: false, the reason in `error`.
bool readXmlFile(const String& path, XmlText& text, XmlError& error);
/// The same for a copy of `source`.
bool copyXmlText(const String& source, XmlText& text, XmlError& error);

/// Sets line and column of the byte at `offset`.
void locate(std::string_view text, std::size_t offset, XmlError& error);

}  // namespace tav::xml
