// SPDX-License-Identifier: MIT
#pragma once

#include "examples/lighttable/FolderTree.h"
#include "examples/lighttable/ImportTask.h"
#include "examples/lighttable/PictureFolder.h"
#include "examples/lighttable/Preferences.h"
#include "examples/lighttable/ThumbnailLoader.h"

#import "examples/lighttable/AccountPanel.h"
#import "examples/lighttable/ImportPanel.h"
#import "examples/lighttable/LightTableWindow.h"

#import <AppKit/AppKit.h>
#include <functional>
#include <memory>
#include <string>
#include <ula/ImportSession.h>

namespace lighttable {

/// The application: what is shown, and what happens when the user asks for something.
/// Thread: main.
class LightTable {
public:
    /// The preferences and the target of the controls are borrowed for its life.
    LightTable(Preferences& preferences, id<LightTableActions> actions);
    ~LightTable();
    LightTable(const LightTable&) = delete;
    LightTable& operator=(const LightTable&) = delete;

    /// Shows the window with this folder; empty: with the one of last time.
    void open(const std::string& folder);
    void importPictures();
    void import(const tav::ula::ImportDevice& device);
    void cancelImport();
    void showAccount();
    void changeThumbnailSize(int side);
    /// Has the preferences know where the window is now.
    void rememberWindow();

    LightTableWindow* window() const { return _window; }
    ImportPanel* importPanel() const { return _importPanel; }
    AccountPanel* accountPanel() const { return _accountPanel; }
    bool isImporting() const { return _import != nullptr; }
    /// Whether everything that is to be seen is there.
    bool isSettled() const;
    /// Called after each step of an import was shown.
    void setImportShown(std::function<void(const ImportState&)> function);

private:
    NSRect windowFrame();
    void showFolder(const std::string& folder);
    void folderChanged();
    void showStatus();
    std::string importFolder() const;
    void showProgress(const ImportState& state);
    void importFinished(const ImportOutcome& outcome);

    Preferences& _preferences;
    std::string _notice;  ///< of the last import, until something else is chosen
    ThumbnailLoader _loader;
    LightTableWindow* _window = nil;
    ImportPanel* _importPanel = nil;
    AccountPanel* _accountPanel = nil;
    PictureFolder _pictures;
    FolderTree _folders;
    std::unique_ptr<ImportTask> _import;
    std::function<void(const ImportState&)> _importShown;
};

}  // namespace lighttable
