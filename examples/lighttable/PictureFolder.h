// SPDX-License-Identifier: MIT
#pragma once

#include "examples/lighttable/PictureFile.h"
#include "examples/lighttable/PictureLister.h"
#include "examples/lighttable/WorkThread.h"

#include <atomic>
#include <functional>
#include <memory>
#include <string>

namespace lighttable {

/// The pictures of the folder that is shown, listed and followed on a thread of its own.
/// Thread: main; so is the call of `changed`.
class PictureFolder {
public:
    explicit PictureFolder(std::function<void()> changed);
    ~PictureFolder();
    PictureFolder(const PictureFolder&) = delete;
    PictureFolder& operator=(const PictureFolder&) = delete;

    /// In place of the one before. Returns at once.
    void show(const std::string& folder);
    const FolderContent& content() const { return _content; }

private:
    PictureLister::Events eventsOf(unsigned number);
    void list(unsigned number);
    void receive(unsigned number, const FolderContent& content);

    const std::function<void()> _changed;
    FolderContent _content;
    std::atomic<unsigned> _number = 0;  ///< of the folder that is wanted
    std::atomic<bool> _isListDue = false;
    std::unique_ptr<PictureLister> _lister;  ///< lives on the thread
    WorkThread _thread;
};

}  // namespace lighttable
