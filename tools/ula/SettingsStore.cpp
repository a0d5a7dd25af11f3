// SPDX-License-Identifier: MIT
#include "tools/ula/SettingsStore.h"

#include "tools/ula/CommandError.h"
#include "tools/ula/Warnings.h"
#include "ula/SettingsException.h"

namespace tav::tool {

namespace {

using xml::XmlDocumentRapid;

[[noreturn]] void failToRead(const std::string& message) {
    throw CommandError{ExitCannotRead, message};
}

/// Empty when there is no file.
std::unique_ptr<SettingsStore> readIfThere(const std::string& path) {
    xml::XmlError error;
    const auto document = XmlDocumentRapid::load(FastString(path), true, &error);
    if (!document && error.isMissing)
        return nullptr;
    if (!document)
        failToRead(error.describe());
    const Warnings warnings(path);
    auto store = std::make_unique<SettingsStore>();
    try {
        store->read(document);
    } catch (const ula::SettingsException&) {
        failToRead(store->lastError());
    }
    return store;
}

}  // namespace

SettingsStore::SettingsStore() : SettingsXML("ula", "ula", false) {
}

SettingsStore::SettingsStore(const std::string& path)
    : SettingsXML("ula", "ula", FastString(path), false) {
}

const Setting* SettingsStore::find(const std::string& group, const std::string& key) const {
    const auto keys = _settings.find(FastString(group));
    if (keys == _settings.end())
        return nullptr;
    const auto entry = keys->second.find(FastString(key));
    return entry == keys->second.end() ? nullptr : &entry->second;
}

std::unique_ptr<SettingsStore> readStore(const std::string& path) {
    if (auto store = readIfThere(path))
        return store;
    throw CommandError{ExitCannotRead, path + ": there is no such file",
                       "check the path, or start the file with: ula settings FILE set GROUP KEY "
                       "VALUE"};
}

std::unique_ptr<SettingsStore> openStore(const std::string& path) {
    // Looked at first: the constructor with a path would leave a copy of a broken file behind.
    if (!readIfThere(path) && path.empty())
        throw CommandError{ExitUsage, "the name of the settings file is empty"};
    try {
        return std::make_unique<SettingsStore>(path);
    } catch (const ula::SettingsException& exception) {
        failToRead(path + ": " + exception.what());
    }
}

void writeStore(SettingsStore& store, const std::string& path, bool keepBackup) {
    store.setKeepBackup(keepBackup);
    if (store.write())
        return;
    std::string reason = store.lastError();
    if (reason.find(path) == std::string::npos)
        reason = path + ": " + reason;
    throw CommandError{ExitCannotWrite, reason, "nothing was changed"};
}

}  // namespace tav::tool
