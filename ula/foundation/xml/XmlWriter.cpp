// SPDX-License-Identifier: MIT
#include "ula/foundation/xml/XmlWriter.h"

#include "ula/foundation/xml/XmlCharacters.h"

namespace tav::xml {

namespace {

void checkName(const String& name) {
    if (!isName(name.view()))
        throw XmlException("\"" + name.toStdString() + "\" is no name in XML");
}

}  // namespace

XmlWriter::XmlWriter(XmlOutput& output, bool indent) : _output(output), _indent(indent) {
    _output.append(kDeclaration);
}

void XmlWriter::startLine() {
    if (!_indent)
        return;
    _output.append("\n");
    for (std::size_t level = 0; level < _open.size(); ++level)
        _output.append("\t");
}

void XmlWriter::closeStartTag() {
    if (_startTagOpen)
        _output.append(">");
    _startTagOpen = false;
}

void XmlWriter::beginElement(const String& name) {
    checkName(name);
    closeStartTag();
    startLine();
    _output.append("<");
    _output.append(name.view());
    _open.push_back(name);
    _startTagOpen = true;
}

void XmlWriter::endElement() {
    const String name = std::move(_open.back());
    _open.pop_back();
    if (_startTagOpen) {
        _output.append("/>");
        _startTagOpen = false;
        return;
    }
    startLine();
    _output.append("</");
    _output.append(name.view());
    _output.append(">");
}

void XmlWriter::attribute(const String& name, const String& value) {
    checkName(name);
    _output.append(" ");
    _output.append(name.view());
    _output.append("=\"");
    _output.appendValue(name.view(), value);
    _output.append("\"");
}

}  // namespace tav::xml
