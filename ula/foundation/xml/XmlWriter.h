// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/text/FastString.h"
#include "ula/foundation/xml/XmlOutput.h"

#include <vector>

namespace tav::xml {

/// Writes elements and attributes as XML 1.0 in UTF-8, in one pass. Indented, each element stands
/// on a line of its own with a tab per level.
///
/// Thread: one thread uses one object.
/// Fails: throws `XmlException` for a name that is none in XML, and as `XmlOutput`.
class TAV_FOUNDATION_API XmlWriter {
public:
    /// What every document begins with.
    static constexpr std::string_view kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";

    /// Starts with the XML declaration. The output must outlive the writer.
    XmlWriter(XmlOutput& output, bool indent);

    void beginElement(const String& name);
    /// Of the element begun last, before any child of it.
    void attribute(const String& name, const String& value);
    void endElement();
    /// Ends the last line. To be called once, last, with every element ended.
    void finish() { _output.append("\n"); }

private:
    void closeStartTag();
    void startLine();

    XmlOutput& _output;
    bool _indent;
    bool _startTagOpen = false;
    std::vector<String> _open;
};

}  // namespace tav::xml
