// SPDX-License-Identifier: MIT
#include "tools/ula/SettingsStore.h"

#include "tools/ula/CommandError.h"
#include "tools/ula/Translation.h"
#include "tools/ula/Warnings.h"
#include "ula/SettingsException.h"
#include "ula/SettingsPList.h"
#include "ula/SettingsXML.h"
#include "ula/foundation/filesystem/FileSystem.h"

namespace tav::tool {

namespace {

using xml::XmlDocumentRapid;

[[noreturn]] void failToRead(const std::string& message) {
    throw CommandError{ExitCannotRead, message};
}

class XmlStore : public SettingsStore {
public:
    XmlStore() = default;
    explicit XmlStore(const std::string& path) : _settings(path) {}

    GroupMap& groups() override { return _settings.groups(); }
    bool write(bool keepBackup, std::string& error) override {
        _settings.setKeepBackup(keepBackup);
        const bool isDone = _settings.write();
        error = _settings.lastError();
        return isDone;
    }
    /// Fails: throws `CommandError`.
    void read(const util::SharedPtr<XmlDocumentRapid>& document) {
        try {
            _settings.read(document);
        } catch (const ula::SettingsException&) {
            failToRead(_settings.lastError());
        }
    }

private:
    class Settings : public ula::SettingsXML {
    public:
        Settings() : SettingsXML("ula", "ula", false) {}
        explicit Settings(const std::string& path)
            : SettingsXML("ula", "ula", FastString(path), false) {}
        GroupMap& groups() { return _settings; }
    };

    Settings _settings;
};

class PListStore : public SettingsStore {
public:
    explicit PListStore(const std::string& path) : _path(path) {}

    GroupMap& groups() override { return _groups; }
    bool write(bool keepBackup, std::string& error) override {
        return ula::SettingsPList::writeFile(_path, _groups, keepBackup, error);
    }
    /// Fails: throws `CommandError`.
    void read() {
        std::string error;
        if (!ula::SettingsPList::readFile(_path, _groups, error))
            failToRead(error);
    }

private:
    std::string _path;
    GroupMap _groups;
};

/// Empty, as the next one, when there is no file.
std::unique_ptr<SettingsStore> readListIfThere(const std::string& path) {
    if (!filesystem::exists(FastString(path)))
        return nullptr;
    auto store = std::make_unique<PListStore>(path);
    store->read();
    return store;
}

std::unique_ptr<SettingsStore> readIfThere(const std::string& path) {
    xml::XmlError error;
    const auto document = XmlDocumentRapid::load(FastString(path), true, &error);
    if (!document && error.isMissing)
        return nullptr;
    if (!document)
        failToRead(error.describe());
    const Warnings warnings(path);
    auto store = std::make_unique<XmlStore>();
    store->read(document);
    return store;
}

[[noreturn]] void failAsMissing(const SettingsFile& file) {
    const std::string name = file.isPropertyList ? "--plist COMPANY APP" : "FILE";
    throw CommandError{ExitCannotRead, translated("%1: there is no such file", file.path),
                       translated("check the path, or start the file with: %1",
                                  "ula settings " + name + " set GROUP KEY VALUE")};
}

std::unique_ptr<SettingsStore> openList(const SettingsFile& file, IfMissing ifMissing) {
    auto store = readListIfThere(file.path);
    if (!store && ifMissing == IfMissing::Fail)
        failAsMissing(file);
    return store ? std::move(store) : std::make_unique<PListStore>(file.path);
}

}  // namespace

const Setting* SettingsStore::find(const std::string& group, const std::string& key) {
    const auto keys = groups().find(FastString(group));
    if (keys == groups().end())
        return nullptr;
    const auto entry = keys->second.find(FastString(key));
    return entry == keys->second.end() ? nullptr : &entry->second;
}

std::unique_ptr<SettingsStore> readStore(const SettingsFile& file) {
    if (auto store = file.isPropertyList ? readListIfThere(file.path) : readIfThere(file.path))
        return store;
    failAsMissing(file);
}

std::unique_ptr<SettingsStore> openStore(const SettingsFile& file, IfMissing ifMissing) {
    if (file.isPropertyList)
        return openList(file, ifMissing);
    // Looked at first: the constructor with a path would leave a copy of a broken file behind.
    const bool isThere = readIfThere(file.path) != nullptr;
    if (!isThere && ifMissing == IfMissing::Fail)
        failAsMissing(file);
    if (!isThere && file.path.empty())
        throw CommandError{ExitUsage, translated("the name of the settings file is empty")};
    try {
        return std::make_unique<XmlStore>(file.path);
    } catch (const ula::SettingsException& exception) {
        failToRead(file.path + ": " + exception.what());
    }
}

void writeStore(SettingsStore& store, const SettingsFile& file, bool keepBackup) {
    std::string reason;
    if (store.write(keepBackup, reason))
        return;
    if (reason.find(file.path) == std::string::npos)
        reason = file.path + ": " + reason;
    throw CommandError{ExitCannotWrite, reason, translated("nothing was changed")};
}

}  // namespace tav::tool
