// SPDX-License-Identifier: MIT
#include "ula/SettingsPList.h"

#include "PropertyListFile.h"
#include "SettingsPListReader.h"
#include "SettingsPListWriter.h"
#include "ula/ScopedARPool.h"
#include "ula/SpecialFolders.h"
#include "ula/foundation/filesystem/FileSystem.h"
#include "ula/src/Core/UnreadableFile.h"

namespace tav::ula {

SettingsPList::SettingsPList(const FastString& appName, const FastString& company, bool userScope)
    : Settings(appName, company), _userScope(userScope) {
    read();
}

SettingsPList::~SettingsPList() {
    write();
}

std::string SettingsPList::buildFileName(bool userScope) const {
    const std::string path = "/Library/Preferences/com." + _company.toStdString() + "." +
                             _appName.toStdString() + ".plist";
    return userScope ? SpecialFolders::home().toStdString() + path : path;
}

bool SettingsPList::read() {
    const std::string path = buildFileName(_userScope);
    _lastError.clear();
    _unreadableFilePending = false;
    if (readFile(path, _settings, _lastError))
        return true;
    keepUnreadableFileAside();
    return false;
}

/// So that a later write loses nothing.
bool SettingsPList::keepUnreadableFileAside() {
    const FastString path = buildFileName(_userScope);
    if (!filesystem::isRegularFile(path))
        return true;
    std::string result;
    _unreadableFilePending = !keepUnreadableFile(path, result);
    _lastError += _unreadableFilePending ? "; it could not be kept aside: " + result
                                         : "; kept aside as \"" + result + "\"";
    return !_unreadableFilePending;
}

bool SettingsPList::write() {
    if (_unreadableFilePending && !keepUnreadableFileAside())
        return false;
    _lastError.clear();
    return writeFile(buildFileName(_userScope), _settings, _keepBackup, _lastError);
}

bool SettingsPList::readFile(const std::string& path, GroupMap& settings, std::string& error) {
    const ScopedARPool pool;
    settings.clear();
    NSDictionary* const root = loadPropertyList(path, error);
    if (root == nil)
        return false;
    const bool isDone = readSettings(root, settings, error);
    if (!isDone)
        error = path + ": " + error;
    return isDone;
}

bool SettingsPList::writeFile(const std::string& path, const GroupMap& settings, bool keepBackup,
                              std::string& error) {
    const ScopedARPool pool;
    NSDictionary* const root = makePropertyList(settings, error);
    if (root != nil)
        return savePropertyList(root, path, keepBackup, error);
    error = path + ": " + error;
    return false;
}

}  // namespace tav::ula
