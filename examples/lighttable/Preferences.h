// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <ula/NativeTimer.h>
#include <ula/SettingsXML.h>

namespace lighttable {

/// Units: points of the screen.
struct WindowFrame {
    int x = 0, y = 0, width = 0, height = 0;  ///< without a width nothing is known

    bool operator==(const WindowFrame&) const = default;
};

/// What the application remembers from one start to the next, in a file of its own in the user's
/// folder of application data. It is saved a second after a change, and at the end.
/// Thread: main.
class Preferences {
public:
    Preferences();
    /// Without a file: for pictures that scripts take, which are not to disturb the user's choices.
    struct InMemory {};
    explicit Preferences(InMemory);
    ~Preferences();
    Preferences(const Preferences&) = delete;
    Preferences& operator=(const Preferences&) = delete;

    WindowFrame windowFrame();
    void setWindowFrame(const WindowFrame& frame);
    int thumbnailSize();
    void setThumbnailSize(int size);

    std::string folder();
    void setFolder(const std::string& path);

    bool hasDateFolders();
    bool verifiesImports();
    void setImport(bool hasDateFolders, bool verifies);

    std::string uploadServer();
    std::string uploadAccount();
    void setUpload(const std::string& server, const std::string& account);

private:
    void followChanges();
    void save();

    std::unique_ptr<tav::ula::SettingsXML> _settings;
    bool _isInMemory = false;
    bool _isChanged = false;
    std::unique_ptr<tav::ula::NativeTimer> _saveSoon;
};

}  // namespace lighttable
