// SPDX-License-Identifier: MIT
#import "examples/lighttable/LightTable.h"

#include "examples/lighttable/StatusText.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <ula/ApplicationTaskProgress.h>
#include <ula/SpecialFolders.h>
#include <utility>

namespace lighttable {

using namespace tav::ula;

namespace {

constexpr CGFloat kWidth = 1080;
constexpr CGFloat kHeight = 752;

std::string lastComponent(const std::string& path) {
    const std::string name = std::filesystem::path(path).filename().string();
    return name.empty() ? path : name;
}

/// Where the user's pictures are, if they are anywhere.
std::string firstFolder() {
    std::error_code error;
    const std::string pictures = SpecialFolders::myPictures().toStdString();
    return std::filesystem::is_directory(pictures, error) ? pictures
                                                          : SpecialFolders::home().toStdString();
}

/// In its middle, a little higher than half.
void placeOver(NSWindow* window, NSWindow* panel) {
    const NSRect around = [window frame];
    const NSSize size = [panel frame].size;
    [panel setFrameOrigin:NSMakePoint(std::floor(NSMidX(around) - size.width / 2),
                                      std::floor(NSMaxY(around) - size.height -
                                                 (NSHeight(around) - size.height) / 3))];
}

}  // namespace

LightTable::LightTable(Preferences& preferences, id<LightTableActions> actions)
    : _preferences(preferences),
      _loader([this](const std::string& path) { [[_window thumbnails] thumbnailLoaded:path]; }),
      _pictures([this] { folderChanged(); }),
      _folders([this] { [[_window folders] treeChanged]; }) {
    _window = [[LightTableWindow alloc] initWithFrame:windowFrame()
                                        thumbnailSide:preferences.thumbnailSize()
                                               loader:&_loader
                                              actions:actions];
    [[_window folders] setTree:&_folders];
    [[_window folders] setSelected:[this](const std::string& path) { showFolder(path); }];
    [[_window thumbnails] setSelectionChanged:[this] {
        _notice.clear();
        showStatus();
    }];
    _importPanel =
        [[ImportPanel alloc] initWithChosen:[this](const ImportDevice& device) { import(device); }];
    _accountPanel = [[AccountPanel alloc]
        initWithSaved:[this](const std::string& server, const std::string& account) {
            _preferences.setUpload(server, account);
        }];
}

LightTable::~LightTable() {
    _import.reset();
    [[_window folders] setTree:nullptr];
    for (NSWindow *window in [NSArray arrayWithObjects:_importPanel, _accountPanel, _window, nil])
        [window orderOut:nil];
    [_importPanel release];
    [_accountPanel release];
    [_window release];
    _window = nil;
}

/// The one of last time, as far as it can be seen on the screens of today.
NSRect LightTable::windowFrame() {
    const WindowFrame last = _preferences.windowFrame();
    const NSRect frame = NSMakeRect(last.x, last.y, last.width, last.height);
    for (NSScreen* screen in [NSScreen screens]) {
        const NSRect seen = NSIntersectionRect([screen frame], frame);
        if (NSWidth(seen) >= 200 && NSHeight(seen) >= 200)
            return frame;
    }
    const NSRect screen = [[NSScreen mainScreen] frame];
    const CGFloat width = std::min(kWidth, NSWidth(screen)),
                  height = std::min(kHeight, NSHeight(screen));
    return NSMakeRect(std::floor(NSMidX(screen) - width / 2),
                      std::floor(NSMidY(screen) - height / 2), width, height);
}

void LightTable::rememberWindow() {
    // A menu in the window is no part of its content, and grows downwards from its upper edge.
    const NSRect whole = [NSWindow contentRectForFrameRect:[_window frame]
                                                 styleMask:[_window styleMask]];
    NSRect frame = [_window contentRectForFrameRect:[_window frame]];
    frame.origin.y = NSMaxY(whole) - NSHeight(frame);
    const auto number = [](CGFloat value) { return static_cast<int>(std::lround(value)); };
    _preferences.setWindowFrame({number(NSMinX(frame)), number(NSMinY(frame)),
                                 number(NSWidth(frame)), number(NSHeight(frame))});
}

void LightTable::open(const std::string& folder) {
    const std::string last = _preferences.folder();
    if (!folder.empty())
        showFolder(folder);
    else if (_pictures.content().folder.empty())
        showFolder(last.empty() ? firstFolder() : last);
    _folders.reveal(_pictures.content().folder);
    [_window makeKeyAndOrderFront:nil];
}

void LightTable::showFolder(const std::string& folder) {
    _notice.clear();
    _preferences.setFolder(folder);
    [_window showTitle:lastComponent(folder) path:folder];
    [[_window folders] showFolder:folder];
    _pictures.show(folder);
}

void LightTable::folderChanged() {
    [[_window thumbnails] showContent:_pictures.content()];
    showStatus();
}

void LightTable::showStatus() {
    [_window showStatus:_notice.empty() ? statusText(_pictures.content(),
                                                     [[_window thumbnails] selectedPicture])
                                        : _notice];
}

void LightTable::changeThumbnailSize(int side) {
    _preferences.setThumbnailSize(side);
    [[_window sizeSlider] setIntValue:_preferences.thumbnailSize()];
    [[_window thumbnails] setSide:_preferences.thumbnailSize()];
}

bool LightTable::isSettled() const {
    return _pictures.content().state != FolderState::Listing && _folders.isLoaded() &&
           _loader.isIdle();
}

/// Into the folder that is shown; if that has gone, to the user's pictures.
std::string LightTable::importFolder() const {
    return _pictures.content().state == FolderState::Listed ? _pictures.content().folder
                                                            : firstFolder();
}

void LightTable::importPictures() {
    if (isImporting())
        return;
    placeOver(_window, _importPanel);
    [_importPanel showWithFolder:importFolder()
                     dateFolders:_preferences.hasDateFolders()
                          verify:_preferences.verifiesImports()];
}

void LightTable::import(const ImportDevice& device) {
    if (isImporting())
        return;
    _preferences.setImport([_importPanel hasDateFolders], [_importPanel verifies]);
    ImportOptions options;
    options.dateFolders = _preferences.hasDateFolders() ? "%Y/%Y-%m-%d" : "";
    options.verify = _preferences.verifiesImports();
    ImportTask::Events events;
    events.progress = [this](const ImportState& state) { showProgress(state); };
    events.finished = [this](const ImportOutcome& outcome) { importFinished(outcome); };
    [_window showImport:"Looking for pictures on " + device.name fraction:0];
    _import = std::make_unique<ImportTask>(device, importFolder(), options, events);
}

void LightTable::showProgress(const ImportState& state) {
    [_window showImport:importText(state) fraction:state.fraction];
    ApplicationTaskProgress::instance()->showProgress(nullptr, state.fraction, TaskProgressGreen);
    if (_importShown)
        _importShown(state);
}

void LightTable::importFinished(const ImportOutcome& outcome) {
    _notice = importText(outcome);
    _import.reset();
    [_window endImport];
    ApplicationTaskProgress::instance()->clearProgress();
    showStatus();
}

void LightTable::cancelImport() {
    if (_import)
        _import->cancel();
}

void LightTable::showAccount() {
    placeOver(_window, _accountPanel);
    [_accountPanel showServer:_preferences.uploadServer() account:_preferences.uploadAccount()];
}

void LightTable::setImportShown(std::function<void(const ImportState&)> function) {
    _importShown = std::move(function);
}

}  // namespace lighttable
