// SPDX-License-Identifier: MIT
#include "ula/SettingsPList.h"

#import "ula/ObjCHelper.h"
#include "ula/ScopedARPool.h"
#include "ula/SpecialFolders.h"
#include "ula/foundation/filesystem/DurableFile.h"
#include "ula/foundation/filesystem/FileSystem.h"
#include "ula/src/Core/SettingsPListQuickReader.h"
#include "ula/src/Core/SettingsPListWriter.h"
#include "ula/src/Core/UnreadableFile.h"
#include "ula/src/Mac/PropertyListFile.h"
#include "ula/src/Mac/SettingsPListReader.h"

namespace tav::ula {

namespace {

using GroupMap = SettingsBase::GroupMap;

bool readWithPlatform(const std::string& path, GroupMap& settings, std::string& error) {
    const ScopedARPool pool;
    NSDictionary* const root = loadPropertyList(path, error);
    if (root == nil)
        return false;
    const bool isDone = readSettingsPList(root, settings, error);
    if (!isDone)
        error = path + ": " + error;
    return isDone;
}

/// Where there never was a list of anybody's there is not even the folder.
void makeFolderOf(const FastString& path) {
    const ScopedARPool pool;
    NSString* const folder = [NSString fromUTF8String:filesystem::parentPath(path)];
    if (folder != nil)
        [[NSFileManager defaultManager] createDirectoryAtPath:folder
                                  withIntermediateDirectories:YES
                                                   attributes:nil
                                                        error:nullptr];
}

/// Whether the file at the path is one that a user may want back: a list of groups that holds
/// anything else than what replaces it.
bool isWorthABackup(const FastString& path, const GroupMap& replacement) {
    GroupMap groups;
    if (readSettingsPListQuickly(path, groups))
        return !groups.empty() && !(groups == replacement);
    const ScopedARPool pool;
    std::string ignored;
    return holdsGroups(loadPropertyList(path.toStdString(), ignored));
}

}  // namespace

SettingsPList::SettingsPList(const FastString& appName, const FastString& company, bool userScope)
    : Settings(appName, company), _userScope(userScope) {
    read();
}

SettingsPList::~SettingsPList() {
    write();
}

std::string SettingsPList::buildFileName(bool userScope) const {
    return fileName(_appName, _company, userScope);
}

std::string SettingsPList::fileName(const FastString& appName, const FastString& company,
                                    bool userScope) {
    const std::string path = "/Library/Preferences/com." + company.toStdString() + "." +
                             appName.toStdString() + ".plist";
    return userScope ? SpecialFolders::home().toStdString() + path : path;
}

bool SettingsPList::read() {
    const std::string path = buildFileName(_userScope);
    _lastError.clear();
    _reasonOfUnkeptFile.reset();
    if (readFile(path, _settings, _lastError))
        return true;
    keepUnreadableFileAside(_lastError);
    return false;
}

/// So that a later write loses nothing.
bool SettingsPList::keepUnreadableFileAside(std::string reason) {
    std::string note;
    const bool isKept = keepUnreadableFile(buildFileName(_userScope), note);
    _lastError = reason + note;
    _reasonOfUnkeptFile.reset();
    if (!isKept)
        _reasonOfUnkeptFile = std::move(reason);
    return isKept;
}

bool SettingsPList::write() {
    if (_reasonOfUnkeptFile && !keepUnreadableFileAside(*_reasonOfUnkeptFile))
        return false;
    _lastError.clear();
    return writeFile(buildFileName(_userScope), _settings, _keepBackup, _lastError);
}

bool SettingsPList::readFile(const std::string& path, GroupMap& settings, std::string& error) {
    settings.clear();
    error.clear();
    return readSettingsPListQuickly(path, settings) || readWithPlatform(path, settings, error);
}

bool SettingsPList::writeFile(const std::string& path, const GroupMap& settings, bool keepBackup,
                              std::string& error) {
    std::string text;
    error.clear();
    try {
        xml::XmlOutput output([&](std::string_view piece) { text += piece; });
        writeSettingsPList(settings, output);
        output.flush();
    } catch (const xml::XmlException& exception) {
        error = path + ": " + exception.what();
        return false;
    }
    const FastString file(path);
    makeFolderOf(file);
    filesystem::DurableFileOptions options;
    if (keepBackup && isWorthABackup(file, settings))
        options.keepOldAs = filesystem::leaf(file).toStdString() + ".bak";
    return filesystem::replaceFileDurably(file, text, options, &error);
}

}  // namespace tav::ula
