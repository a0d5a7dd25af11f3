// SPDX-License-Identifier: MIT
#include "examples/lighttable/PictureLister.h"

#include <chrono>
#include <filesystem>
#include <ula/Dir.h>

namespace lighttable {

using namespace tav::ula;
namespace fs = std::filesystem;

namespace {

constexpr auto kSettle = std::chrono::milliseconds(300);
constexpr auto kYoung = std::chrono::seconds(3);
constexpr unsigned int kLookAgainMs = 1000;

FolderState stateOf(const std::string& folder) {
    std::error_code error;
    const fs::directory_iterator entries(folder, error);
    if (!error)
        return FolderState::Listed;
    return error == std::errc::permission_denied ? FolderState::Unreadable : FolderState::Missing;
}

/// The folder itself, or the first above it that is there: what comes back comes back in it.
std::string whatIsThere(const std::string& folder) {
    fs::path path = folder;
    std::error_code error;
    while (!fs::exists(path, error) && path.has_relative_path())
        path = path.parent_path();
    return path.string();
}

/// Hidden ones, too: a monitor would follow them.
bool hasFolders(const std::string& folder) {
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code unknown;
        if (entry->symlink_status(unknown).type() == fs::file_type::directory)
            return true;
    }
    return false;
}

/// Whether there is such a file. What is no file is not read: a pipe would never end.
bool fill(PictureFile& picture, fs::file_time_type& modified) {
    std::error_code error;
    if (!fs::is_regular_file(picture.path, error))
        return false;
    picture.size = fs::file_size(picture.path, error);
    modified = fs::last_write_time(picture.path, error);
    picture.modified = modified.time_since_epoch().count();
    return !error;
}

}  // namespace

PictureLister::PictureLister(std::string folder, Events events)
    : _folder(std::move(folder)), _events(std::move(events)) {
}

PictureLister::~PictureLister() = default;

void PictureLister::list() {
    // Watched before it is listed: what changes in between is told.
    watch();
    FolderContent content = look();
    if (!_events.isWanted())
        return;
    _events.listed(std::move(content));
    lookAgainSoon();
}

FolderContent PictureLister::look() {
    FolderContent content;
    content.folder = _folder;
    content.state = stateOf(_folder);
    _isFresh = false;
    if (content.state != FolderState::Listed)
        return content;
    Dir dir(_folder);
    if (!dir.loadChildren(false, [this](std::size_t) { return _events.isWanted(); })) {
        content.state = FolderState::Unreadable;
        return content;
    }
    const auto now = fs::file_time_type::clock::now();
    for (const Dir* child : dir.childrenSorted(false)) {
        if (child->isDir() || child->isHidden() || !isPictureName(child->name()))
            continue;
        PictureFile picture{_folder + "/" + child->name(), child->name()};
        fs::file_time_type modified;
        if (!fill(picture, modified))
            continue;
        _isFresh |= modified <= now && now - modified < kYoung;
        content.pictures.push_back(std::move(picture));
    }
    return content;
}

void PictureLister::watch() {
    const std::string path = whatIsThere(_folder);
    if (path != _folder || hasFolders(_folder))
        return watchAlone(path);
    if (_monitor)
        return;
    TreeMonitorOptions options;
    options.settle = kSettle;
    _monitor = TreeMonitor::create(_folder, options);
    if (!_monitor)
        return watchAlone(path);
    _watcher.reset();
    _monitor->changed().connect([this](const TreeEvent&) { _events.changed(); });
}

void PictureLister::watchAlone(const std::string& path) {
    _monitor.reset();
    if (_watcher && path == _watchedPath && !_hasWatcherEnded)
        return;
    _watcher.reset();
    _watchedPath = path;
    _hasWatcherEnded = false;
    _watcher = std::make_unique<FileSystemWatcher>(path, false);
    _watcher->connect([this](const std::string&, FileSystemWatcherInfo info) {
        if (info == PathRemoved)
            _hasWatcherEnded = true;
        _events.changed();
    });
}

void PictureLister::lookAgainSoon() {
    _again.reset();
    if (!_monitor && _isFresh)
        _again.reset(NativeTimer::createTimer(kLookAgainMs, _events.changed));
}

}  // namespace lighttable
