// SPDX-License-Identifier: MIT
#include "FolderTracker.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fsevents {

namespace {

// Both ends of a move are told in one go; this is for the moment between the two.
constexpr int kMoveEndTimeoutMs = 10;

FSEventStreamEventFlags kindOf(bool isFolder) {
    return isFolder ? kFSEventStreamEventFlagItemIsDir : kFSEventStreamEventFlagItemIsFile;
}

// What comes from or goes to where nothing is watched is new or gone.
FSEventStreamEventFlags flagsOf(uint32_t mask) {
    FSEventStreamEventFlags flags = kindOf((mask & IN_ISDIR) != 0);
    if ((mask & (IN_CREATE | IN_MOVED_TO)) != 0)
        flags |= kFSEventStreamEventFlagItemCreated;
    if ((mask & (IN_DELETE | IN_MOVED_FROM)) != 0)
        flags |= kFSEventStreamEventFlagItemRemoved;
    if ((mask & IN_ATTRIB) != 0)
        flags |= kFSEventStreamEventFlagItemInodeMetaMod;
    if ((mask & IN_MODIFY) != 0)
        flags |= kFSEventStreamEventFlagItemModified;
    return flags;
}

}  // namespace

FolderTracker::FolderTracker(std::unique_ptr<KernelWatches> kernel, Client& client)
    : _kernel(std::move(kernel)), _client(client) {
}

std::string FolderTracker::pathOf(Folder folder) const {
    std::string path = _client.rootPath(_store.treeOf(folder)) + _store.pathBelowRoot(folder);
    return path.empty() ? "/" : path;
}

Folder FolderTracker::openRoot(uint32_t tree, int* error) {
    *error = 0;
    const std::string& path = _client.rootPath(tree);
    _guards.arm(tree, path, *_kernel);
    const cf::Descriptor opened = openFolderAt(path.empty() ? "/" : path, true);
    const int watch = opened ? _kernel->addFolder(opened.get()) : -1;
    if (watch < 0) {
        if (errno != ENOENT && errno != ENOTDIR)
            *error = errno;
        return kNoFolder;
    }
    const Folder root = _store.addRoot(tree, watch);
    FolderWalk(*_kernel, _store, *this).list(root, opened.get());
    return root;
}

void FolderTracker::closeRoot(uint32_t tree, Folder root) {
    const std::vector<int> watches = _guards.disarm(tree);
    if (root != kNoFolder)
        forget(root);
    for (const int watch : watches)
        release(watch);
}

// The way may be another one although it leads to the same folder.
bool FolderTracker::leadsTo(uint32_t tree, Folder root) {
    const std::string& path = _client.rootPath(tree);
    const std::vector<int> former = _guards.disarm(tree);
    _guards.arm(tree, path, *_kernel);
    for (const int watch : former)
        release(watch);
    const cf::Descriptor opened = openFolderAt(path.empty() ? "/" : path, true);
    if (!opened)
        return false;
    const int watch = _kernel->addFolder(opened.get());
    release(watch);
    return watch == _store.watchOf(root);
}

// The folder, open; nothing when its path leads to another one. An event that is still to come
// says then where it is, and it is looked at again.
cf::Descriptor FolderTracker::open(Folder folder) {
    cf::Descriptor opened = openFolderAt(pathOf(folder), _store.isRoot(folder));
    if (!opened) {
        if (errno == ENOENT || errno == ENOTDIR || errno == ELOOP)
            _store.setIncomplete(folder, true);
        else
            _client.notFollowed(folder, {}, errno);
        return {};
    }
    const int watch = _kernel->addFolder(opened.get());
    if (watch == _store.watchOf(folder))
        return opened;
    release(watch);
    _store.setIncomplete(folder, true);
    return {};
}

void FolderTracker::adopt(Folder parent, std::string_view name, bool tellsContent) {
    const cf::Descriptor opened = open(parent);
    if (opened)
        enter(parent, opened.get(), name, tellsContent);
}

void FolderTracker::enter(Folder parent, int descriptor, std::string_view name, bool tellsContent) {
    _tellsFound = tellsContent;
    FolderWalk(*_kernel, _store, *this).enter(parent, descriptor, name);
    _tellsFound = false;
}

void FolderTracker::found(Folder folder, std::string_view name, bool isFolder) {
    if (_tellsFound)
        _client.itemChanged(folder, name, kFSEventStreamEventFlagItemCreated | kindOf(isFolder),
                            _client.nextEventIds(1));
}

void FolderTracker::refresh(Folder root, std::string_view pathBelowRoot) {
    Folder parent = root;
    std::string_view rest = pathBelowRoot.substr(1);
    for (std::size_t end = rest.find('/'); end != std::string_view::npos; end = rest.find('/')) {
        parent = _store.child(parent, rest.substr(0, end));
        if (parent == kNoFolder)
            return;
        rest.remove_prefix(end + 1);
    }
    forgetChild(parent, rest);
    adopt(parent, rest, false);
}

void FolderTracker::handleWaiting() {
    std::vector<char> bytes;
    std::vector<KernelEvent> events = _kernel->take(bytes);
    if (MovePairs::mayLackEnd(events)) {
        _kernel->waitAndCollect(kMoveEndTimeoutMs);
        std::vector<char> more;
        const std::vector<KernelEvent> later = _kernel->take(more);
        events.insert(events.end(), later.begin(), later.end());
        handle(events);
    } else {
        handle(events);
    }
}

void FolderTracker::handle(const std::vector<KernelEvent>& events) {
    const MovePairs pairs(events);
    for (std::size_t index = 0; index < events.size(); ++index) {
        const KernelEvent& event = events[index];
        if ((event.mask & IN_Q_OVERFLOW) != 0)
            return _client.lostTrack();
        const std::size_t partner = pairs.partnerOf(index);
        if (partner == MovePairs::kNone)
            handleSingle(event);
        else if ((event.mask & IN_MOVED_FROM) != 0)
            handleMove(event, events[partner]);
        handleGuarded(event);
    }
}

void FolderTracker::handleGuarded(const KernelEvent& event) {
    for (const auto& [tree, concern] : _guards.concernedBy(event)) {
        if (concern == RootGuards::Concern::Content)
            _client.rootWritten(tree, flagsOf(event.mask));
        else
            _client.rootMayBeAnother(tree);
    }
    if ((event.mask & IN_IGNORED) != 0)
        _guards.forget(event.watch);
}

void FolderTracker::handleSingle(const KernelEvent& event) {
    const std::vector<Folder> folders = _store.onWatch(event.watch);
    if (folders.empty())
        return;
    const FSEventStreamEventId id = _client.nextEventIds(1);
    for (const Folder folder : folders)
        // Handling it for one of them may have taken away the next.
        if (_store.watchOf(folder) == event.watch)
            handleOn(folder, event, id);
}

void FolderTracker::handleOn(Folder folder, const KernelEvent& event, FSEventStreamEventId id) {
    if ((event.mask & IN_IGNORED) != 0) {
        if (_store.isRoot(folder))
            _client.rootForgotten(_store.treeOf(folder));
        return forget(folder);
    }
    if (event.name.empty()) {
        // For others the parent tells it, with the name.
        if ((event.mask & IN_ATTRIB) != 0 && _store.isRoot(folder))
            _client.itemChanged(folder, {}, flagsOf(event.mask | IN_ISDIR), id);
        return;
    }
    handleItem(folder, event, id);
    // Two items may have changed places, which the kernel tells as two moves.
    if ((event.mask & IN_MOVED_FROM) != 0)
        tellIfThere(folder, event.name);
}

void FolderTracker::handleItem(Folder folder, const KernelEvent& event, FSEventStreamEventId id) {
    const bool isFolder = (event.mask & IN_ISDIR) != 0;
    // A folder was found at its place before this was handled: it comes later.
    if (!isFolder && (event.mask & (IN_CREATE | IN_DELETE | IN_MOVE)) != 0)
        removeFolder(folder, event.name);
    _client.itemChanged(folder, event.name, flagsOf(event.mask), id);
    if (!isFolder)
        return;
    if ((event.mask & (IN_DELETE | IN_MOVED_FROM)) != 0)
        forgetChild(folder, event.name);
    // Changed attributes may open a folder that nobody could read.
    else if ((event.mask & (IN_CREATE | IN_MOVED_TO)) != 0 ||
             _store.child(folder, event.name) == kNoFolder)
        adopt(folder, event.name);
}

void FolderTracker::handleMove(const KernelEvent& from, const KernelEvent& to) {
    std::vector<Move> moves;
    std::vector<Folder> sources;
    std::vector<Folder> targets = _store.onWatch(to.watch);
    for (const Folder source : _store.onWatch(from.watch)) {
        const auto target = std::find_if(targets.begin(), targets.end(), [&](Folder candidate) {
            return _store.treeOf(candidate) == _store.treeOf(source);
        });
        if (target == targets.end()) {
            sources.push_back(source);
            continue;
        }
        // A folder has the name that the file leaves: they have changed places.
        const bool isOfFolder = (from.mask & IN_ISDIR) != 0;
        if (!isOfFolder && _store.child(source, from.name) != kNoFolder)
            continue;
        moves.push_back({source, *target});
        targets.erase(target);
    }
    tellMoves(moves, from, to);
    for (const Move& move : moves)
        followMove(move, from, to);
    // From one tree to another.
    const FSEventStreamEventId id = _client.nextEventIds(2);
    for (const Folder source : sources)
        handleOn(source, from, id);
    for (const Folder target : targets)
        handleOn(target, to, id + 1);
}

void FolderTracker::tellMoves(const std::vector<Move>& moves, const KernelEvent& from,
                              const KernelEvent& to) {
    const FSEventStreamEventFlags flags =
        kFSEventStreamEventFlagItemRenamed | kindOf((from.mask & IN_ISDIR) != 0);
    const FSEventStreamEventId id = _client.nextEventIds(2);
    for (const Move& move : moves)
        _client.itemChanged(move.source, from.name, flags, id);
    for (const Move& move : moves)
        _client.itemChanged(move.target, to.name, flags, id + 1);
}

void FolderTracker::followMove(const Move& move, const KernelEvent& from, const KernelEvent& to) {
    if ((from.mask & IN_ISDIR) != 0)
        relocate(move.source, from.name, move.target, to.name);
    else
        forgetChild(move.target, to.name);
    // As for a single end.
    if (_store.watchOf(move.source) == from.watch)
        tellIfThere(move.source, from.name);
}

void FolderTracker::tellIfThere(Folder folder, std::string_view name) {
    const cf::Descriptor parent = open(folder);
    struct stat item {};
    if (!parent ||
        fstatat(parent.get(), std::string(name).c_str(), &item, AT_SYMLINK_NOFOLLOW) != 0)
        return;
    const bool isFolder = S_ISDIR(item.st_mode);
    _client.itemChanged(folder, name, kFSEventStreamEventFlagItemCreated | kindOf(isFolder),
                        _client.nextEventIds(1));
    if (isFolder)
        enter(folder, parent.get(), name, true);
}

// The kernel's watches move with the folders. Where this is not the folder that was moved (it, or
// another one, was found at its place before its events were handled), it is told anew.
void FolderTracker::relocate(Folder source, std::string_view oldName, Folder target,
                             std::string_view newName) {
    const Folder moved = _store.child(source, oldName);
    if (moved != kNoFolder && isBelow(target, moved))
        return _client.lostTrack();
    if (moved == kNoFolder || !mayBeAt(moved, target, newName)) {
        if (moved != kNoFolder)
            forget(moved);
        forgetChild(target, newName);
        tellRemoved(target, newName);
        return tellIfThere(target, newName);
    }
    const Folder occupant = _store.child(target, newName);
    if (occupant != kNoFolder && occupant != moved)
        forget(occupant);
    _store.move(moved, target, newName);
    if (_store.hasIncomplete())
        complete(moved);
}

// False when another folder has the place. When nothing has it, or it cannot be found, the folder
// may have moved on.
bool FolderTracker::mayBeAt(Folder folder, Folder parent, std::string_view name) {
    const cf::Descriptor opened = open(parent);
    if (!opened)
        return true;
    const cf::Descriptor place(
        openat(opened.get(), std::string(name).c_str(),
               O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!place)
        return true;
    const int watch = _kernel->addFolder(place.get());
    release(watch);
    return watch == _store.watchOf(folder);
}

// Looks again where a folder could not be found under its path.
void FolderTracker::complete(Folder top) {
    for (const Folder folder : _store.subtree(top)) {
        if (!_store.isIncomplete(folder))
            continue;
        const cf::Descriptor opened = open(folder);
        if (!opened)
            continue;
        _store.setIncomplete(folder, false);
        _tellsFound = true;
        FolderWalk(*_kernel, _store, *this).list(folder, opened.get());
        _tellsFound = false;
    }
}

void FolderTracker::replaced(Folder folder) {
    const Folder parent = _store.parentOf(folder);
    const std::string name(_store.nameOf(folder));
    if (!_tellsFound)
        return forget(folder);
    removeFolder(parent, name);
    _client.itemChanged(parent, name,
                        kFSEventStreamEventFlagItemCreated | kFSEventStreamEventFlagItemIsDir,
                        _client.nextEventIds(1));
}

void FolderTracker::tellRemoved(Folder parent, std::string_view name) {
    _client.itemChanged(parent, name,
                        kFSEventStreamEventFlagItemRemoved | kFSEventStreamEventFlagItemIsDir,
                        _client.nextEventIds(1));
}

void FolderTracker::removeFolder(Folder parent, std::string_view name) {
    const Folder child = _store.child(parent, name);
    if (child == kNoFolder)
        return;
    forget(child);
    tellRemoved(parent, name);
}

bool FolderTracker::isBelow(Folder folder, Folder top) const {
    while (folder != top && !_store.isRoot(folder))
        folder = _store.parentOf(folder);
    return folder == top;
}

void FolderTracker::forgetChild(Folder parent, std::string_view name) {
    const Folder child = _store.child(parent, name);
    if (child != kNoFolder)
        forget(child);
}

void FolderTracker::forget(Folder top) {
    std::size_t count = 0;
    for (const Folder folder : _store.subtree(top)) {
        const int watch = _store.watchOf(folder);
        _store.remove(folder);
        release(watch);
        if (++count % FolderWalk::kFoldersBetweenCollections == 0)
            _kernel->collect();
    }
}

// A watch that something still needs stays.
void FolderTracker::release(int watch) {
    if (watch >= 0 && !_store.isWatched(watch) && !_guards.uses(watch))
        _kernel->remove(watch);
}

}  // namespace fsevents
