// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/text/FastString.h"
#include "ula/foundation/xml/XmlException.h"

#include <functional>
#include <string_view>
#include <vector>

namespace tav::xml {

/// Writes elements and attributes as XML 1.0 in UTF-8, in one pass. Indented, each element stands
/// on a line of its own with a tab per level.
///
/// Thread: one thread uses one object.
/// Fails: throws `XmlException` for a name that is none in XML, and for a value that XML cannot
/// carry (control characters other than tab and line ends, U+FFFE, U+FFFF, bytes that are not
/// UTF-8); what the sink throws passes through.
class TAV_FOUNDATION_API XmlWriter {
public:
    /// Receives the text piece by piece.
    using Sink = std::function<void(std::string_view text)>;

    /// Starts with the XML declaration.
    XmlWriter(Sink sink, bool indent);

    void beginElement(const String& name);
    /// Of the element begun last, before any child of it.
    void attribute(const String& name, const String& value);
    void attribute(const String& name, int value);
    void attribute(const String& name, double value);
    void endElement();
    /// Hands the rest to the sink. To be called once, last, with every element ended.
    void finish();

private:
    void closeStartTag();
    void startLine();
    void appendValue(std::string_view attributeName, std::string_view value);
    void append(std::string_view text);

    Sink _sink;
    bool _indent;
    bool _startTagOpen = false;
    std::vector<String> _open;
    std::vector<char> _buffer;
    std::size_t _used = 0;
};

}  // namespace tav::xml
