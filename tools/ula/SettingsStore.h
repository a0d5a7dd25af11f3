// SPDX-License-Identifier: MIT
#pragma once

#include "ula/SettingsBase.h"

#include <memory>
#include <string>

namespace tav::tool {

using Setting = ula::SettingsBase::Setting;
using KeyMap = ula::SettingsBase::KeyMap;
using GroupMap = ula::SettingsBase::GroupMap;
using ula::FastString;

/// Where settings are kept.
struct SettingsFile {
    std::string path;
    bool isPropertyList = false;
};

/// The settings of a file, with write access to the maps: the library itself never removes keys.
class SettingsStore {
public:
    virtual ~SettingsStore() = default;

    virtual GroupMap& groups() = 0;
    /// Replaces the file. Fails: false, the reason in `error`.
    virtual bool write(bool keepBackup, std::string& error) = 0;

    const Setting* find(const std::string& group, const std::string& key);
};

/// The settings in a file, for commands that only look: nothing is written, not even the copy that
/// the library keeps of a file that it does not understand.
/// Fails: throws `CommandError`, as all of these.
std::unique_ptr<SettingsStore> readStore(const SettingsFile& file);
enum class IfMissing { Start, Fail };
/// The settings in a file, for commands that change them; where there is no such file, empty or an
/// error.
std::unique_ptr<SettingsStore> openStore(const SettingsFile& file, IfMissing ifMissing);
/// Replaces the file; `keepBackup` keeps the old one as PATH.bak.
void writeStore(SettingsStore& store, const SettingsFile& file, bool keepBackup);

}  // namespace tav::tool
