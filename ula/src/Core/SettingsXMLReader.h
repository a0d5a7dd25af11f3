// SPDX-License-Identifier: MIT
#pragma once

#include "ula/SettingsBase.h"
#include "ula/foundation/xml/XmlDocumentRapid.h"

#include <string>

namespace tav::ula {

/// Merges a document into a store: each group of the document replaces the group of that name
/// whole, once all of its keys were read.
class SettingsXMLReader {
public:
    SettingsXMLReader(const xml::XmlDocumentRapid& document, SettingsBase::GroupMap& settings)
        : _document(document), _settings(settings) {}

    /// Fails: throws `SettingsException` at the first element that does not belong; `error()` then
    /// names the place.
    void read();
    const std::string& error() const { return _error; }

private:
    /// Where in the file values are being read, for messages.
    struct Place {
        FastString group;
        FastString key;
    };

    void readGroup(const xml::NodeIterator& group);
    SettingsBase::Setting readSetting(const xml::NodeIterator& key, SettingsType type,
                                      const Place& place);
    SettingsBase::Setting readStringArray(const xml::NodeIterator& key, const Place& place);
    FastString readAttribute(const xml::NodeIterator& element, const FastString& name,
                             const Place& place);
    void logNoNumber(const FastString& text, const char* expected, const Place& place);
    int readInt(const FastString& text, const Place& place);
    double readDouble(const FastString& text, const Place& place);
    [[noreturn]] void fail(const xml::NodeIterator& element, const char* message,
                           const std::string& detail);

    const xml::XmlDocumentRapid& _document;
    SettingsBase::GroupMap& _settings;
    std::string _error;
    /// The attribute that was asked for last is not there.
    bool _valueIsMissing = false;
};

}  // namespace tav::ula
