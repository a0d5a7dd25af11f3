// SPDX-License-Identifier: MIT
#include "examples/lighttable/FolderTree.h"

#include <algorithm>
#include <filesystem>
#include <ula/Dir.h>
#include <ula/SpecialFolders.h>

namespace lighttable {

using namespace tav::ula;

namespace {

using Nodes = std::vector<std::unique_ptr<FolderNode>>;

FolderNode* findIn(const Nodes& nodes, std::uint64_t id) {
    for (const auto& node : nodes) {
        if (node->id == id)
            return node.get();
        if (FolderNode* const below = findIn(node->children, id))
            return below;
    }
    return nullptr;
}

void appendRows(const Nodes& nodes, std::vector<FolderNode*>& rows) {
    for (const auto& node : nodes) {
        rows.push_back(node.get());
        if (node->isExpanded)
            appendRows(node->children, rows);
    }
}

bool isAtOrAbove(const std::string& folder, const std::string& path) {
    return !folder.empty() && path.starts_with(folder) &&
           (path.size() == folder.size() || folder == "/" || path[folder.size()] == '/');
}

/// What is known already stays, with everything that is open below it.
std::unique_ptr<FolderNode> take(Nodes& nodes, FolderKind kind, const std::string& path) {
    const auto found = std::find_if(nodes.begin(), nodes.end(), [&](const auto& node) {
        return node && node->kind == kind && node->path == path;
    });
    return found == nodes.end() ? nullptr : std::move(*found);
}

}  // namespace

FolderTree::FolderTree(std::function<void()> changed)
    : _changed(std::move(changed)), _driveWatcher(DriveWatcher::create()) {
    addPlaces();
    _driveWatcher->driveMounted.connect([this](const Drive&) { loadDrives(); });
    _driveWatcher->driveUnmounted.connect([this](const Drive&) { loadDrives(); });
    loadDrives();
}

FolderTree::~FolderTree() {
    _thread.add([this] { _watchers.clear(); });
}

std::unique_ptr<FolderNode> FolderTree::makeNode(FolderKind kind, std::string title,
                                                 std::string path, int depth) {
    auto node = std::make_unique<FolderNode>();
    node->id = ++_lastId;
    node->kind = kind;
    node->title = std::move(title);
    node->path = std::move(path);
    node->depth = depth;
    node->isExpandable = kind != FolderKind::Heading;
    return node;
}

void FolderTree::addPlaces() {
    _roots.push_back(makeNode(FolderKind::Heading, "Places", "", 0));
    const std::string home = SpecialFolders::home().toStdString();
    const std::string pictures = SpecialFolders::myPictures().toStdString();
    _roots.push_back(makeNode(FolderKind::Place, "Home", home, 0));
    if (pictures != home && std::filesystem::path(pictures).is_absolute())
        _roots.push_back(makeNode(FolderKind::Place, "Pictures", pictures, 0));
    refreshRows();
}

void FolderTree::loadDrives() {
    ++_pending;
    _thread.run([] { return Drive::drives(); },
                [this](const std::vector<Drive>& drives) {
                    --_pending;
                    showDrives(drives);
                });
}

void FolderTree::showDrives(const std::vector<Drive>& drives) {
    Nodes before = std::move(_roots);
    _roots.clear();
    for (auto& node : before)
        if (node->kind == FolderKind::Place ||
            (node->kind == FolderKind::Heading && _roots.empty()))
            _roots.push_back(std::move(node));
    std::erase(before, nullptr);
    if (!drives.empty())
        _roots.push_back(makeNode(FolderKind::Heading, "Drives", "", 0));
    for (const Drive& drive : drives) {
        const FileProperties& properties = drive.properties();
        auto node = take(before, FolderKind::Drive, properties.fullPath());
        if (!node)
            node = makeNode(FolderKind::Drive, properties.title(), properties.fullPath(), 0);
        if (properties.icon() != nullptr)
            node->icon = std::make_shared<FileIconBitmap>(*properties.icon());
        _roots.push_back(std::move(node));
    }
    for (const auto& gone : before)
        if (gone)
            forget(*gone);
    refreshRows();
    if (!_revealed.empty())
        revealIn(_roots);
    _changed();
}

void FolderTree::expand(FolderNode& node) {
    if (!node.isExpandable || node.isExpanded)
        return;
    node.isExpanded = true;
    list(node.id, true);
    refreshRows();
    _changed();
}

void FolderTree::collapse(FolderNode& node) {
    if (!node.isExpanded)
        return;
    _revealed.clear();
    forget(node);
    node.isExpanded = false;
    node.children.clear();
    refreshRows();
    _changed();
}

void FolderTree::reveal(const std::string& path) {
    _revealed = path;
    revealIn(_roots);
}

void FolderTree::revealIn(const Nodes& nodes) {
    FolderNode* nearest = nullptr;
    for (const auto& node : nodes)
        if (isAtOrAbove(node->path, _revealed) &&
            (nearest == nullptr || node->path.size() > nearest->path.size()))
            nearest = node.get();
    if (nearest == nullptr)
        return;
    if (nearest->path == _revealed)
        return _revealed.clear();
    if (nearest->isExpanded)
        return revealIn(nearest->children);
    expand(*nearest);
}

void FolderTree::list(std::uint64_t id, bool isNew) {
    FolderNode* const node = find(id);
    if (node == nullptr || !node->isExpanded)
        return;
    ++_pending;
    const auto look = [this, id, path = node->path, isNew] {
        if (isNew)
            watch(id, path);
        return listFolders(path);
    };
    _thread.run(look, [this, id](const std::vector<Folder>& folders) {
        --_pending;
        receive(id, folders);
    });
}

/// On the thread, and before the folder is listed: what changes meanwhile is told.
void FolderTree::watch(std::uint64_t id, const std::string& path) {
    _watchers.erase(id);
    std::error_code error;
    if (!std::filesystem::exists(path, error))
        return;
    auto watcher = std::make_unique<FileSystemWatcher>(path, false);
    watcher->connect([this, id](const std::string&, FileSystemWatcherInfo info) {
        // That was a watcher's last call: what has the path now needs a new one.
        _thread.tell([this, id, isNew = info == PathRemoved] { list(id, isNew); });
    });
    _watchers[id] = std::move(watcher);
}

/// Ends watching a node that is open, and those below it.
void FolderTree::forget(const FolderNode& node) {
    if (!node.isExpanded)
        return;
    _thread.add([this, id = node.id] { _watchers.erase(id); });
    for (const auto& child : node.children)
        forget(*child);
}

std::vector<FolderTree::Folder> FolderTree::listFolders(const std::string& path) {
    std::vector<Folder> folders;
    Dir dir(path);
    for (const Dir* child : dir.childrenSorted(true)) {
        if (child->name().empty())
            continue;
        Folder folder{path == "/" ? "/" + child->name() : path + "/" + child->name(),
                      child->title()};
        folder.isExpandable = child->containsChildren(true);
        folders.push_back(std::move(folder));
    }
    return folders;
}

void FolderTree::receive(std::uint64_t id, const std::vector<Folder>& folders) {
    FolderNode* const node = find(id);
    if (node == nullptr || !node->isExpanded)
        return;
    Nodes before = std::move(node->children);
    node->children.clear();
    for (const Folder& folder : folders) {
        auto child = take(before, FolderKind::Folder, folder.path);
        if (!child)
            child = makeNode(FolderKind::Folder, folder.title, folder.path, node->depth + 1);
        child->isExpandable = folder.isExpandable || child->isExpanded;
        node->children.push_back(std::move(child));
    }
    for (const auto& gone : before)
        if (gone)
            forget(*gone);
    refreshRows();
    if (!_revealed.empty() && isAtOrAbove(node->path, _revealed))
        revealIn(node->children);
    _changed();
}

FolderNode* FolderTree::find(std::uint64_t id) {
    return findIn(_roots, id);
}

void FolderTree::refreshRows() {
    _rows.clear();
    appendRows(_roots, _rows);
}

}  // namespace lighttable
