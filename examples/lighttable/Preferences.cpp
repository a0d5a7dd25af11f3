// SPDX-License-Identifier: MIT
#include "examples/lighttable/Preferences.h"

#include <algorithm>
#include <filesystem>
#include <ula/SettingsException.h>
#include <ula/SpecialFolders.h>

namespace lighttable {

using namespace tav::ula;

namespace {

constexpr const char* kApplication = "Light Table";
constexpr const char* kCompany = "Examples";
constexpr unsigned int kSaveAfterMs = 1000;

/// Somebody may have tidied it up while the application ran.
std::filesystem::path makeFolder() {
    const std::filesystem::path folder =
        SpecialFolders::myApplicationSupportPath().toStdString() + "/lighttable";
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    return folder;
}

std::unique_ptr<SettingsXML> openFile() {
    const std::string path = makeFolder() / "settings.xml";
    try {
        return std::make_unique<SettingsXML>(kApplication, kCompany, path, false);
    } catch (const SettingsException&) {
        // Some other XML lies there: it is kept, and the application begins anew.
        std::error_code error;
        std::filesystem::rename(path, path + ".not-settings", error);
        return std::make_unique<SettingsXML>(kApplication, kCompany, path, false);
    }
}

}  // namespace

Preferences::Preferences() : _settings(openFile()) {
    followChanges();
}

Preferences::Preferences(InMemory)
    : _settings(std::make_unique<SettingsXML>(kApplication, kCompany, false)), _isInMemory(true) {
    setUpload("photos.example.org", "anna");
}

Preferences::~Preferences() {
    save();
}

void Preferences::followChanges() {
    _settings->changed().connect([this] {
        _isChanged = true;
        if (!_saveSoon)
            _saveSoon.reset(NativeTimer::createTimer(kSaveAfterMs, [this] {
                save();
                _saveSoon.reset();
            }));
    });
}

void Preferences::save() {
    if (!_isChanged || _isInMemory)
        return;
    makeFolder();
    _isChanged = !_settings->write();
}

WindowFrame Preferences::windowFrame() {
    return {_settings->getInt("Window", "Left", 0), _settings->getInt("Window", "Bottom", 0),
            _settings->getInt("Window", "Width", 0), _settings->getInt("Window", "Height", 0)};
}

void Preferences::setWindowFrame(const WindowFrame& frame) {
    if (frame == windowFrame())
        return;
    _settings->setGeneric("Window", "Left", frame.x);
    _settings->setGeneric("Window", "Bottom", frame.y);
    _settings->setGeneric("Window", "Width", frame.width);
    _settings->setGeneric("Window", "Height", frame.height);
}

int Preferences::thumbnailSize() {
    return std::clamp(_settings->getInt("Thumbnails", "Size", 160), 80, 320);
}

void Preferences::setThumbnailSize(int size) {
    if (size != thumbnailSize())
        _settings->setGeneric("Thumbnails", "Size", size);
}

std::string Preferences::folder() {
    return _settings->getString("Folder", "Last", "").toStdString();
}

void Preferences::setFolder(const std::string& path) {
    if (path != folder())
        _settings->setGeneric("Folder", "Last", FastString(path));
}

bool Preferences::hasDateFolders() {
    return _settings->getBool("Import", "DateFolders", false);
}

bool Preferences::verifiesImports() {
    return _settings->getBool("Import", "Verify", true);
}

void Preferences::setImport(bool hasDateFolders, bool verifies) {
    _settings->setGeneric("Import", "DateFolders", hasDateFolders);
    _settings->setGeneric("Import", "Verify", verifies);
}

std::string Preferences::uploadServer() {
    return _settings->getString("Upload", "Server", "").toStdString();
}

std::string Preferences::uploadAccount() {
    return _settings->getString("Upload", "Account", "").toStdString();
}

void Preferences::setUpload(const std::string& server, const std::string& account) {
    _settings->setGeneric("Upload", "Server", FastString(server));
    _settings->setGeneric("Upload", "Account", FastString(account));
}

}  // namespace lighttable
