// SPDX-License-Identifier: MIT
#pragma once

#include "examples/lighttable/PictureFile.h"

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <ula/FileSystemWatcher.h>
#include <ula/NativeTimer.h>
#include <ula/TreeMonitor.h>

namespace lighttable {

/// Lists the pictures of one folder and watches it.
///
/// A folder without folders in it is followed by a `TreeMonitor`, which also tells when a picture
/// is written anew, and tells of files when they are whole. It would follow everything below, the
/// whole disk perhaps: any other folder has a `FileSystemWatcher`, which tells that an entry came
/// or went; as long as the newest file is very young it is looked at again.
/// Thread: one with a run loop, all the life long.
class PictureLister {
public:
    struct Events {
        std::function<void(FolderContent)> listed;  ///< in this thread
        std::function<void()> changed;              ///< in any thread: `list` is due
        std::function<bool()> isWanted;             ///< false: a listing may be broken off
    };

    PictureLister(std::string folder, Events events);
    ~PictureLister();
    PictureLister(const PictureLister&) = delete;
    PictureLister& operator=(const PictureLister&) = delete;

    void list();

private:
    FolderContent look();
    void watch();
    void watchAlone(const std::string& path);
    void lookAgainSoon();

    const std::string _folder;
    const Events _events;
    std::string _watchedPath;
    std::atomic<bool> _hasWatcherEnded = false;
    bool _isFresh = false;  ///< a file was written a moment ago
    std::unique_ptr<tav::ula::TreeMonitor> _monitor;
    std::unique_ptr<tav::ula::FileSystemWatcher> _watcher;
    std::unique_ptr<tav::ula::NativeTimer> _again;
};

}  // namespace lighttable
