// SPDX-License-Identifier: MIT
#include "ula/foundation/xml/XmlFile.h"

namespace tav::xml {

XmlFile::XmlFile(const String& path, filesystem::DurableFileOptions options)
    : _file(path, std::move(options)), _output([this](std::string_view text) { write(text); }) {
}

void XmlFile::write(std::string_view text) {
    if (!_file.write(text))
        throw XmlException(_file.error());
}

void XmlFile::commit() {
    _output.flush();
    if (!_file.commit())
        throw XmlException(_file.error());
}

}  // namespace tav::xml
