// SPDX-License-Identifier: MIT
#pragma once

#include "ula/SettingsXML.h"

#include <memory>
#include <string>

namespace tav::tool {

using Setting = ula::SettingsBase::Setting;
using KeyMap = ula::SettingsBase::KeyMap;
using GroupMap = ula::SettingsBase::GroupMap;
using ula::FastString;

/// The settings of a file, with write access to the maps: the library itself never removes keys.
class SettingsStore : public ula::SettingsXML {
public:
    SettingsStore();
    explicit SettingsStore(const std::string& path);

    GroupMap& groups() { return _settings; }
    const Setting* find(const std::string& group, const std::string& key) const;
};

/// The settings in a file, for commands that only look: nothing is written, not even the copy that
/// the library keeps of a file that it does not understand.
/// Fails: throws `CommandError`, as all of these.
std::unique_ptr<SettingsStore> readStore(const std::string& path);
/// The settings in a file, for commands that change them; empty when there is no such file.
std::unique_ptr<SettingsStore> openStore(const std::string& path);
/// Replaces the file; `keepBackup` keeps the old one as PATH.bak.
void writeStore(SettingsStore& store, const std::string& path, bool keepBackup);

}  // namespace tav::tool
