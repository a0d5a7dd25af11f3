// SPDX-License-Identifier: MIT
#include "ula/SpecialFolders.h"

#include "ula/foundation/debug/Assertion.h"
#include "ula/src/Core/SpecialFoldersMac.h"

namespace tav::ula {

namespace {

constexpr char kPreferences[] = "/Library/Preferences";

FastString joined(const FastString& folder, const char* suffix) {
    return folder.toStdString() + suffix;
}

}  // namespace

FastString SpecialFolders::home() {
    return SpecialFoldersMac::home();
}

FastString SpecialFolders::tempPath() {
    return SpecialFoldersMac::tempPath();
}

FastString SpecialFolders::myDocuments() {
    return SpecialFoldersMac::myDocuments();
}

FastString SpecialFolders::myPictures() {
    return SpecialFoldersMac::myPictures();
}

FastString SpecialFolders::myMovies() {
    return SpecialFoldersMac::myMovies();
}

FastString SpecialFolders::myMusic() {
    return SpecialFoldersMac::myMusic();
}

FastString SpecialFolders::myApplicationSupportPath() {
    return SpecialFoldersMac::applicationSupportPath();
}

FastString SpecialFolders::myApplicationResourcePath(const Module* module) {
    return SpecialFoldersMac::myApplicationResourcePath(module);
}

FastString SpecialFolders::myApplicationFrameworkPath(const Module* module) {
    return SpecialFoldersMac::myApplicationFrameworkPath(module);
}

FastString SpecialFolders::myApplicationExecutionPath(const Module* module) {
    return SpecialFoldersMac::myApplicationExecutionPath(module);
}

FastString SpecialFolders::myProfilesPath(const Module* module) {
    return joined(myApplicationFrameworkPath(module), "/Profiles");
}

FastString SpecialFolders::myApplicationData() {
    return joined(home(), "/Library/Application Support");
}

FastString SpecialFolders::myPreferences() {
    debug::assertionFailed("src/Core/SpecialFolders", 107, "0");
    return joined(home(), kPreferences);
}

FastString SpecialFolders::globalPreferences() {
    return FastString::literal(kPreferences);
}

}  // namespace tav::ula
