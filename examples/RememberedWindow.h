// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <ula/Drive.h>
#include <ula/SettingsXML.h>
#include <ula/SpecialFolders.h>

/// How large a window was when it was closed, in a file that outlives the program. Knows no
/// toolkit.
class RememberedWindow {
public:
    explicit RememberedWindow(const char* application)
        : _settings(application, "Example", fileOf(application), true) {}

    int width() { return _settings.getInt("Window", "Width", 480); }
    int height() { return _settings.getInt("Window", "Height", 320); }
    /// Written when this object goes.
    void resize(int width, int height) {
        _settings.setGeneric("Window", "Width", width);
        _settings.setGeneric("Window", "Height", height);
    }

private:
    static std::string fileOf(const std::string& application) {
        const std::string folder =
            tav::ula::SpecialFolders::myApplicationSupportPath().toStdString() + "/" + application;
        std::error_code error;
        std::filesystem::create_directories(folder, error);
        return folder + "/settings.xml";
    }

    tav::ula::SettingsXML _settings;
};

/// A line for a list: "Stick, 12 GB free".
inline std::string driveLine(const tav::ula::Drive& drive) {
    std::string line = drive.properties().title();
    if (const auto space = drive.space())
        line += ", " + std::to_string(space->free / 1'000'000'000) + " GB free";
    return line;
}
