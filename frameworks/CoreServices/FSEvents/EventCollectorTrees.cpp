// SPDX-License-Identifier: MIT
// The collector's trees: their roots, and what is told of them.
#include "EventCollector.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sys/stat.h>

namespace fsevents {

namespace {

long limitOf(const char* name) {
    long limit = 0;
    std::ifstream(std::string("/proc/sys/fs/inotify/") + name) >> limit;
    return limit;
}

// "" for "/", as roots are kept.
std::string withoutLinks(const std::string& root) {
    char path[PATH_MAX];
    const bool isFound = realpath(root.empty() ? "/" : root.c_str(), path) != nullptr;
    const std::string found = isFound ? path : root;
    return found == "/" ? "" : found;
}

std::optional<std::pair<dev_t, ino_t>> identityOf(const std::string& path) {
    struct stat facts {};
    if (stat(path.empty() ? "/" : path.c_str(), &facts) != 0)
        return std::nullopt;
    return std::pair(facts.st_dev, facts.st_ino);
}

// What of a path lies below a root, with the slash before it; empty for other paths.
std::string below(const std::string& root, const std::string& path) {
    const bool isBelow =
        path.size() > root.size() + 1 && path.starts_with(root) && path[root.size()] == '/';
    return isBelow ? path.substr(root.size()) : std::string();
}

}  // namespace

template <class Record>
void EventCollector::record(const Tree& tree, Record record) {
    for (EventStream* stream : tree.streams) {
        record(*stream);
        if (!stream->isFull())
            continue;
        fprintf(stderr,
                "FSEvents: more changes than a stream keeps came before its run loop asked for "
                "them; its folders are to be read again\n");
        stream->collapse(nextEventIds(1));
    }
}

FSEventStreamEventId EventCollector::nextEventIds(unsigned count) {
    return _latestId.fetch_add(count) + 1;
}

std::string EventCollector::pathOf(Folder folder, std::string_view name) const {
    std::string path = _trees[_tracker->store().treeOf(folder)]->path;
    path += _tracker->store().pathBelowRoot(folder);
    path += '/';
    return path.append(name);
}

void EventCollector::itemChanged(Folder folder, std::string_view name,
                                 FSEventStreamEventFlags flags, FSEventStreamEventId id) {
    const Tree& tree = *_trees[_tracker->store().treeOf(folder)];
    if (tree.streams.empty())
        return;
    const std::string path = pathOf(folder, {});
    record(tree, [&](EventStream& stream) { stream.recordItem(path, name, flags, id); });
}

void EventCollector::mustScan(Folder folder, std::string_view name) {
    std::string path = pathOf(folder, name);
    if (!name.empty())
        path += '/';
    tellMustScan(*_trees[_tracker->store().treeOf(folder)], path);
}

void EventCollector::tellMustScan(const Tree& tree, const std::string& path) {
    const FSEventStreamEventId id = nextEventIds(1);
    record(tree, [&](EventStream& stream) {
        stream.record(path, kFSEventStreamEventFlagMustScanSubDirs, id);
    });
}

void EventCollector::rootWritten(uint32_t number, FSEventStreamEventFlags flags) {
    const Tree& tree = *_trees[number];
    const FSEventStreamEventId id = nextEventIds(1);
    record(tree, [&](EventStream& stream) {
        stream.record(tree.path, stream.tellsItems() ? flags : kFSEventStreamEventFlagNone, id);
    });
}

void EventCollector::notFollowed(Folder folder, std::string_view name, int error) {
    Tree& tree = *_trees[_tracker->store().treeOf(folder)];
    sayNotFollowed(tree, pathOf(folder, name), error);
    // A folder that may not be read has nothing to scan either.
    if (error != EACCES && error != EPERM)
        error == ENOSPC ? tellMustScan(tree, tree.path + "/") : mustScan(folder, name);
}

// Once for each reason: a tree may have thousands of such folders.
void EventCollector::sayNotFollowed(Tree& tree, const std::string& path, int error) {
    if (!tree.errorsTold.insert(error).second)
        return;
    if (error == ENOSPC) {
        const long limit = limitOf("max_user_watches");
        fprintf(stderr,
                "FSEvents: %s and folders like it are not watched: all %ld of "
                "fs.inotify.max_user_watches are in use; raise it: sysctl "
                "fs.inotify.max_user_watches=%ld\n",
                path.c_str(), limit, 2 * limit);
        return;
    }
    fprintf(stderr, "FSEvents: %s and folders like it are not watched: %s\n", path.c_str(),
            error == ENAMETOOLONG ? "they lie too deep" : strerror(error));
}

bool EventCollector::isExcluded(Folder folder, std::string_view name) {
    const Tree& tree = *_trees[_tracker->store().treeOf(folder)];
    if (tree.excluded.empty())
        return false;
    std::string path = _tracker->store().pathBelowRoot(folder) + "/";
    path.append(name);
    return std::find(tree.excluded.begin(), tree.excluded.end(), path) != tree.excluded.end();
}

void EventCollector::rootForgotten(uint32_t number) {
    _trees[number]->folder = kNoFolder;
    _trees[number]->mayBeAnother = true;
}

void EventCollector::attach(EventStream& stream, const std::string& root) {
    bool isNew = false;
    const uint32_t number = treeFor(root, &isNew);
    _trees[number]->streams.push_back(&stream);
    if (isNew)
        openTree(number);
}

uint32_t EventCollector::treeFor(const std::string& root, bool* isNew) {
    uint32_t place = static_cast<uint32_t>(_trees.size());
    for (uint32_t number = 0; number < _trees.size(); ++number) {
        if (_trees[number] && _trees[number]->path == root)
            return number;
        if (!_trees[number])
            place = number;
    }
    if (place == _trees.size())
        _trees.emplace_back();
    _trees[place] = std::make_unique<Tree>();
    _trees[place]->path = root;
    *isNew = true;
    return place;
}

void EventCollector::openTree(uint32_t number) {
    Tree& tree = *_trees[number];
    tree.realPath = withoutLinks(tree.path);
    tree.mayBeAnother = false;
    tree.excluded.clear();
    for (const std::string& point : mountsNotToFollow()) {
        const std::string excluded = below(tree.realPath, point);
        if (!excluded.empty())
            tree.excluded.push_back(excluded);
    }
    int error = 0;
    tree.folder = _tracker->openRoot(number, &error);
    tree.file = identityOf(tree.path);
    if (tree.folder != kNoFolder)
        tree.kind = Kind::Directory;
    else
        tree.kind = tree.file ? Kind::File : Kind::Missing;
    if (error == 0)
        return;
    sayNotFollowed(tree, tree.path + "/", error);
    if (error == ENOSPC)
        tellMustScan(tree, tree.path + "/");
}

void EventCollector::closeTree(uint32_t number) {
    _tracker->closeRoot(number, _trees[number]->folder);
    _trees[number].reset();
}

void EventCollector::checkRoots() {
    for (uint32_t number = 0; number < _trees.size(); ++number)
        if (_trees[number] && std::exchange(_trees[number]->mayBeAnother, false))
            checkRoot(number);
}

void EventCollector::checkRoot(uint32_t number) {
    Tree& tree = *_trees[number];
    if (tree.folder != kNoFolder && _tracker->leadsTo(number, tree.folder))
        return;
    const Kind before = tree.kind;
    _tracker->closeRoot(number, tree.folder);
    openTree(number);
    if (before != Kind::Missing || tree.kind != Kind::Missing)
        tellRootChanged(tree);
}

// Streams that do not ask for their roots only need to know that all is different.
void EventCollector::tellRootChanged(const Tree& tree) {
    const FSEventStreamEventId id = nextEventIds(1);
    record(tree, [&](EventStream& stream) {
        if (stream.watchesRoots())
            stream.record(tree.path.empty() ? "/" : tree.path, kFSEventStreamEventFlagRootChanged,
                          id);
        else if (tree.kind != Kind::Missing)
            stream.record(tree.path + "/", kFSEventStreamEventFlagMustScanSubDirs, id);
    });
}

void EventCollector::handleMounts() {
    for (const MountChange& change : _mounts->take())
        for (uint32_t number = 0; number < _trees.size(); ++number)
            if (_trees[number])
                handleMount(number, change);
}

void EventCollector::handleMount(uint32_t number, const MountChange& change) {
    Tree& tree = *_trees[number];
    if (tree.folder != kNoFolder || identityOf(tree.path) != tree.file)
        tree.mayBeAnother = true;
    const std::string place = below(tree.realPath, change.point);
    if (place.empty() || tree.folder == kNoFolder)
        return;
    const std::vector<std::string> points = mountsNotToFollow();
    std::erase(tree.excluded, place);
    if (std::find(points.begin(), points.end(), change.point) != points.end())
        tree.excluded.push_back(place);
    const FSEventStreamEventId id = nextEventIds(1);
    record(tree, [&](EventStream& stream) {
        stream.record(
            tree.path + place + "/",
            change.isMounted ? kFSEventStreamEventFlagMount : kFSEventStreamEventFlagUnmount, id);
    });
    _tracker->refresh(tree.folder, place);
}

// A new queue has none of the old one's gaps.
void EventCollector::recover() {
    if (!_isBlind)
        fprintf(stderr,
                "FSEvents: changes were lost, all folders are read again: more than "
                "fs.inotify.max_queued_events (%ld) came at once; raise it when this happens "
                "often\n",
                limitOf("max_queued_events"));
    _tracker->kernel().abandon();
    std::unique_ptr<KernelWatches> kernel = KernelWatches::open();
    if (!kernel)
        return goBlind(errno);
    _isBlind = false;
    _tracker = std::make_unique<FolderTracker>(std::move(kernel), client());
    for (uint32_t number = 0; number < _trees.size(); ++number) {
        if (!_trees[number])
            continue;
        Tree& tree = *_trees[number];
        const Kind before = tree.kind;
        openTree(number);
        if (before != tree.kind)
            tellRootChanged(tree);
        else
            tellMustScan(tree, tree.path + "/");
    }
}

// Told once at the beginning and, by what recovers, once at the end.
void EventCollector::goBlind(int error) {
    _hasLostTrack = true;
    if (std::exchange(_isBlind, true))
        return;
    fprintf(stderr, "FSEvents: nothing is watched until the kernel gives a queue again: %s%s\n",
            strerror(error),
            error == EMFILE ? "; raise fs.inotify.max_user_instances, or let go of files" : "");
    for (const auto& tree : _trees)
        if (tree)
            tellMustScan(*tree, tree->path + "/");
}

}  // namespace fsevents
