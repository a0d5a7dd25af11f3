// SPDX-License-Identifier: MIT
#include "ula/SettingsXML.h"

#include "ula/SettingsException.h"
#include "ula/foundation/debug/Log.h"
#include "ula/foundation/filesystem/FileSystem.h"
#include "ula/foundation/xml/XmlFile.h"
#include "ula/src/Core/SettingsTypeText.h"
#include "ula/src/Core/SettingsXMLQuickReader.h"
#include "ula/src/Core/SettingsXMLReader.h"
#include "ula/src/Core/SettingsXMLWriter.h"
#include "ula/src/Core/UnreadableFile.h"

namespace tav::ula {

namespace {

using xml::XmlDocumentRapid;

constexpr const char* kSource = "src/Core/SettingsXML";

}  // namespace

SettingsXML::SettingsXML(const FastString& appName, const FastString& company, bool writeOnDestroy)
    : Settings(appName, company), _writeOnDestroy(writeOnDestroy) {
}

SettingsXML::SettingsXML(const FastString& appName, const FastString& company,
                         const FastString& filePath, bool writeOnDestroy)
    : Settings(appName, company), _writeOnDestroy(writeOnDestroy), _filePath(filePath) {
    if (!_filePath.empty())
        readAtConstruction();
}

SettingsXML::~SettingsXML() {
    if (_writeOnDestroy)
        write();
}

SettingsType SettingsXML::toType(const FastString& text) {
    const SettingsType type = typeOfText(text.view());
    if (type == SETTINGSTYPE_INVALID)
        debug::assertionFailed(kSource, 17, "0");
    return type;
}

FastString SettingsXML::toString(SettingsType type) {
    const std::string_view text = textOfType(type);
    if (text.empty()) {
        debug::assertionFailed(kSource, 27, "0");
        return FastString::literal("<invalid>");
    }
    return FastString::borrow(text);
}

void SettingsXML::readAtConstruction() {
    try {
        if (!read())
            keepUnreadableFileAside(_lastError);
    } catch (const SettingsException&) {
        keepUnreadableFileAside(_lastError);
        throw;
    }
}

/// So that a later write, by this object or by one made in its stead, loses nothing.
bool SettingsXML::keepUnreadableFileAside(std::string reason) {
    std::string note;
    const bool isKept = keepUnreadableFile(_filePath, note);
    _lastError = reason + note;
    _reasonOfUnkeptFile.reset();
    if (!isKept)
        _reasonOfUnkeptFile = std::move(reason);
    return isKept;
}

bool SettingsXML::read() {
    _lastError.clear();
    xml::XmlError error;
    if (!readSettingsXMLQuickly(_filePath, _settings) &&
        !readLoaded(XmlDocumentRapid::load(_filePath, true, &error), error))
        return false;
    _reasonOfUnkeptFile.reset();
    return true;
}

bool SettingsXML::read(const FastString& xmlText) {
    xml::XmlError error;
    return readLoaded(XmlDocumentRapid::loadFromData(xmlText, &error), error);
}

bool SettingsXML::read(util::SharedPtr<XmlDocumentRapid> document) {
    return readLoaded(document, {{}, "there is no document"});
}

bool SettingsXML::readLoaded(const util::SharedPtr<XmlDocumentRapid>& document,
                             const xml::XmlError& error) {
    _lastError = document ? std::string() : error.describe();
    if (!document)
        return false;
    SettingsXMLReader reader(*document, _settings);
    try {
        reader.read();
    } catch (const SettingsException&) {
        _lastError = reader.error();
        throw;
    }
    return true;
}

bool SettingsXML::write() {
    try {
        writeFile();
        _lastError.clear();
        return true;
    } catch (const xml::XmlException& exception) {
        debug::logf(kSource, 165, debug::LogLevelError, "%*").add(exception.what());
        _lastError = exception.what();
        return false;
    }
}

void SettingsXML::writeFile() {
    if (_reasonOfUnkeptFile && !keepUnreadableFileAside(*_reasonOfUnkeptFile))
        throw xml::XmlException(_lastError);
    filesystem::DurableFileOptions options;
    if (_keepBackup && XmlDocumentRapid::load(_filePath, true))
        options.keepOldAs = filesystem::leaf(_filePath).toStdString() + ".bak";
    xml::XmlFile file(_filePath, options);
    writeSettingsXML(_settings, file.output());
    file.commit();
}

}  // namespace tav::ula
