// SPDX-License-Identifier: MIT
#pragma once

#include "examples/lighttable/FolderNode.h"
#include "examples/lighttable/WorkThread.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <ula/Drive.h>
#include <ula/DriveWatcher.h>
#include <ula/FileSystemWatcher.h>
#include <vector>

namespace lighttable {

/// What the browser at the left shows: the user's places and the drives, and below them the folders
/// that have been opened, each listed when it is opened and followed as long as it is.
/// Thread: main; so is the call of `changed`. Nothing here waits for a disk.
class FolderTree {
public:
    explicit FolderTree(std::function<void()> changed);
    ~FolderTree();
    FolderTree(const FolderTree&) = delete;
    FolderTree& operator=(const FolderTree&) = delete;

    /// The visible lines from top to bottom; good until the next `changed`.
    const std::vector<FolderNode*>& rows() const { return _rows; }
    void expand(FolderNode& node);
    void collapse(FolderNode& node);
    /// Opens what lies above a folder, as its lines arrive.
    void reveal(const std::string& path);
    bool isLoaded() const { return _pending == 0; }

private:
    struct Folder {
        std::string path;
        std::string title;
        bool isExpandable = false;
    };
    static std::vector<Folder> listFolders(const std::string& path);
    std::unique_ptr<FolderNode> makeNode(FolderKind kind, std::string title, std::string path,
                                         int depth);
    void addPlaces();
    void loadDrives();
    void showDrives(const std::vector<tav::ula::Drive>& drives);
    void list(std::uint64_t id, bool isNew);
    void watch(std::uint64_t id, const std::string& path);
    void receive(std::uint64_t id, const std::vector<Folder>& folders);
    void forget(const FolderNode& node);
    FolderNode* find(std::uint64_t id);
    void revealIn(const std::vector<std::unique_ptr<FolderNode>>& nodes);
    void refreshRows();

    const std::function<void()> _changed;
    std::vector<std::unique_ptr<FolderNode>> _roots;
    std::vector<FolderNode*> _rows;
    std::uint64_t _lastId = 0;
    std::string _revealed;  ///< empty once its line is there
    int _pending = 0;
    std::unique_ptr<tav::ula::DriveWatcher> _driveWatcher;
    /// Of what is open, by the nodes' numbers: live on the thread.
    std::map<std::uint64_t, std::unique_ptr<tav::ula::FileSystemWatcher>> _watchers;
    WorkThread _thread;
};

}  // namespace lighttable
