// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Settings.h"
#include "ula/foundation/util/SharedPtr.h"
#include "ula/foundation/xml/XmlDocumentRapid.h"

#include <optional>
#include <string>

namespace tav::ula {

/// Settings in one XML file, read and written whole.
///
/// The file: the root "settings"; in it a "group" per group with its "name"; in it a "key" per key
/// with its "name" and "type"; in it the "value" elements, one for a single value, one per entry
/// of a string array. Groups and keys stand in the store's order.
///
/// Reading merges: each group of the file replaces the group of that name whole, other groups
/// stay. A value that is missing or no number reads as zero or empty, with a line of level 2 in
/// the log that names group and key.
///
/// Writing replaces the file durably: it is at any moment the old or the new one, whole. A file
/// that could not be understood when the object was made is first kept aside under
/// "NAME.corrupt-" and the UTC time; where that fails, nothing is written.
///
/// Thread: one at a time; `read` and `write` wait for the disk.
class ULA_API SettingsXML : public Settings {
public:
    /// Without a file: nothing is read, and writing fails.
    SettingsXML(const FastString& appName, const FastString& company, bool writeOnDestroy);
    /// Reads the file at once unless `filePath` is empty.
    /// Fails: a missing or broken file leaves the store empty; throws `SettingsException` as
    /// `read`.
    SettingsXML(const FastString& appName, const FastString& company, const FastString& filePath,
                bool writeOnDestroy);
    /// Writes, if told to at construction.
    ~SettingsXML() override;

    /// Merges the file into the store.
    /// Fails: false, and the store untouched, when the file is missing or not well-formed; throws
    /// `SettingsException` when it is no settings file: the groups before the failure are merged.
    bool read() override;
    /// The same for XML text (not a path), and for a document; an empty one gives false.
    bool read(const FastString& xmlText);
    bool read(util::SharedPtr<xml::XmlDocumentRapid> document);
    /// Fails: false, logged at level 4, the old file whole; also when a name or value holds what
    /// XML cannot carry.
    bool write() override;

    static SettingsType toType(const FastString& text);
    static FastString toString(SettingsType type);

    /// Why the last `read` or `write` failed, with path, line and column where there are any;
    /// empty after a success.
    const std::string& lastError() const { return _lastError; }

    /// From now on `write` keeps the file that it replaces as "NAME.bak", if that file can be
    /// read. Off at first.
    void setKeepBackup(bool keep) { _keepBackup = keep; }

private:
    void readAtConstruction();
    bool readLoaded(const util::SharedPtr<xml::XmlDocumentRapid>& document,
                    const xml::XmlError& error);
    bool keepUnreadableFileAside(std::string reason);
    void writeFile();

    bool _writeOnDestroy;
    FastString _filePath;
    std::string _lastError;
    bool _keepBackup = false;
    /// Why the file that was there at construction could not be understood, while it has no copy.
    std::optional<std::string> _reasonOfUnkeptFile;
};

}  // namespace tav::ula
