// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Settings.h"

#include <optional>
#include <string>

namespace tav::ula {

/// Settings in a property list in the preferences folder of the user or of the machine, named after
/// the company and the application: "/Library/Preferences/com.COMPANY.APPLICATION.plist".
///
/// The file: a dictionary of groups; each a dictionary of keys; each an integer, a boolean, a real,
/// a string or an array of strings. It is written in XML, and read in any form that property lists
/// have.
///
/// Reading replaces the whole store, also when it fails. So a file that could not be read is first
/// kept aside under "NAME.corrupt-" and the UTC time; where that fails, nothing is written.
///
/// Writing replaces the file durably: it is at any moment the old or the new one, whole. The one
/// before stays as "NAME.bak", if it can be read and holds anything else.
///
/// Thread: one at a time; `read` and `write` wait for the disk.
class ULA_API SettingsPList : public Settings {
public:
    /// Reads the file at once: otherwise the destructor would empty it. `userScope`: the user's
    /// file, else the machine's.
    SettingsPList(const FastString& appName, const FastString& company, bool userScope);
    /// Always writes.
    ~SettingsPList() override;

    /// Replaces the store with what is in the file. Integers are cut to 32 bits; a number that is
    /// none of the store's types is skipped, with an assertion in the log.
    /// Fails: false. With the store empty when there is no file, it is no property list of a
    /// dictionary, or a value has no type of the store's (an assertion in the log); with the groups
    /// before it when a group is no dictionary.
    bool read() override;
    /// Fails: false, not logged, the old file whole; also when a name or value holds what XML
    /// cannot carry.
    bool write() override;

    /// The path of the user's or of the machine's file; of any application's without an object.
    std::string buildFileName(bool userScope) const;
    static std::string fileName(const FastString& appName, const FastString& company,
                                bool userScope);

    /// Why the last `read` or `write` failed; empty after a success.
    const std::string& lastError() const { return _lastError; }

    /// Whether `write` keeps the file that it replaces. On at first.
    void setKeepBackup(bool keep) { _keepBackup = keep; }

    /// The same for any property list of settings, without an object: for programs that look at one
    /// or change it. Nothing is kept aside.
    /// Fails: false, the reason in `error`; `settings` as the store after `read`.
    static bool readFile(const std::string& path, GroupMap& settings, std::string& error);
    static bool writeFile(const std::string& path, const GroupMap& settings, bool keepBackup,
                          std::string& error);

private:
    bool keepUnreadableFileAside(std::string reason);

    bool _userScope;
    std::string _lastError;
    bool _keepBackup = true;
    /// Why the file that is there could not be read, while it has no copy.
    std::optional<std::string> _reasonOfUnkeptFile;
};

}  // namespace tav::ula
