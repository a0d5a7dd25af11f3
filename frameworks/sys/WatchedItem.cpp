// SPDX-License-Identifier: MIT
#include "sys/WatchedItem.h"

#include "CoreFoundation/DescriptorPath.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <unistd.h>

namespace kernelqueue {

namespace {

constexpr std::uint32_t kEntries = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
constexpr std::uint32_t kNameGone = NOTE_DELETE | NOTE_LINK;

Inode inodeOf(const struct stat& facts) {
    return {facts.st_dev, facts.st_ino};
}

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == 0 ? "/" : path.substr(0, slash);
}

/// Empty for what has none.
std::string pathOf(int descriptor) {
    const std::string path = cf::pathOfDescriptor(descriptor);
    return path.starts_with('/') ? path : "";
}

/// A descriptor that holds nothing, blocks nobody, and is known by its inode.
int makeToken() {
    return socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
}

}  // namespace

std::unique_ptr<WatchedItem> WatchedItem::openedAs(int descriptor) {
    std::unique_ptr<WatchedItem> item(new WatchedItem(descriptor));
    if (fstat(descriptor, &item->_facts) != 0)
        return nullptr;
    if (S_ISSOCK(item->_facts.st_mode)) {
        errno = EINVAL;
        return nullptr;
    }
    item->rememberPath();
    return item;
}

void WatchedItem::rememberPath() {
    struct stat facts {};
    const std::string path = pathOf(_descriptor);
    if (path.empty() || !leadsToItem(path, facts))
        return;
    struct stat folder {};
    if (stat(folderOf(path).c_str(), &folder) != 0)
        return;
    _path = path;
    _folder = inodeOf(folder);
}

bool WatchedItem::leadsToItem(const std::string& path, struct stat& facts) const {
    return lstat(path.c_str(), &facts) == 0 && inodeOf(facts) == inodeOf(_facts);
}

bool WatchedItem::isOpen() const {
    struct stat facts {};
    return fstat(_descriptor, &facts) == 0 && inodeOf(facts) == _token.value_or(inodeOf(_facts));
}

bool WatchedItem::letGo() {
    if ((fcntl(_descriptor, F_GETFL) & O_PATH) == 0)
        return true;
    const int token = makeToken();
    if (token < 0)
        return false;
    struct stat facts {};
    const bool done =
        fstat(token, &facts) == 0 && dup3(token, _descriptor, O_CLOEXEC) == _descriptor;
    const int error = errno;
    close(token);
    errno = error;
    if (done)
        _token = inodeOf(facts);
    return done;
}

std::uint32_t WatchedItem::watchMask() const {
    // What is written to the files in a folder is nobody's business and would fill the queue.
    return IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF | (isFolder() ? kEntries : IN_MODIFY);
}

void WatchedItem::ask(const struct kevent& change) {
    // The last look may be from before a time in which nobody asked.
    if (const auto facts = look(); facts && !_isAsked)
        _facts = *facts;
    _isAsked = true;
    _flags = change.flags;
    _wanted = change.fflags;
    _user = change.udata;
}

void WatchedItem::stopAsking() {
    _isAsked = false;
    _pending = 0;
}

bool WatchedItem::see(std::uint32_t mask) {
    const bool isFirst = _seen == 0;
    _seen |= mask;
    return isFirst && mask != 0;
}

bool WatchedItem::seeAnything() {
    _isUncertain = true;
    return see(IN_ATTRIB | IN_MODIFY);
}

/// Nothing when the path no longer leads to the item, or is not known.
std::optional<struct stat> WatchedItem::look() const {
    struct stat facts {};
    const bool isFound =
        isHeld() ? fstat(_descriptor, &facts) == 0 : !_path.empty() && leadsToItem(_path, facts);
    return isFound ? std::optional(facts) : std::nullopt;
}

bool WatchedItem::wasJustRemoved() const {
    struct stat facts {};
    return !isNameless() && fstat(_descriptor, &facts) == 0 && facts.st_nlink == 0;
}

std::uint32_t WatchedItem::notesOfMask() const {
    std::uint32_t notes = 0;
    if (_seen & kEntries)
        notes |= NOTE_WRITE;
    if ((_seen & kEntries) && (_seen & IN_ISDIR))
        notes |= NOTE_LINK;
    if (_seen & IN_MODIFY)
        notes |= NOTE_WRITE;
    if (_seen & IN_DELETE_SELF)
        notes |= kNameGone;
    if (_seen & IN_MOVE_SELF)
        notes |= NOTE_RENAME;
    if (_seen & IN_UNMOUNT)
        notes |= NOTE_REVOKE;
    return notes;
}

/// Somebody else may hold an item whose last name was removed: inotify then speaks of a change of
/// its attributes only. But when a folder above was moved, the path says nothing.
bool WatchedItem::hasLostItsName() const {
    if (_path.empty() || (_seen & IN_MOVE_SELF))
        return false;
    struct stat folder {};
    return _isUncertain ||
           (stat(folderOf(_path).c_str(), &folder) == 0 && inodeOf(folder) == _folder);
}

std::uint32_t WatchedItem::notesOfLook() {
    const std::optional<struct stat> facts = look();
    const bool mayBeGone = (_seen & IN_ATTRIB) != 0;
    if (!facts)
        return mayBeGone && hasLostItsName() ? kNameGone : _seen & IN_ATTRIB ? NOTE_ATTRIB : 0;
    std::uint32_t notes = mayBeGone ? NOTE_ATTRIB : 0;
    if (!isFolder() && facts->st_size > _facts.st_size)
        notes |= NOTE_EXTEND;
    if (facts->st_nlink != _facts.st_nlink)
        notes |= NOTE_LINK;
    // Held by the descriptor itself.
    if (facts->st_nlink == 0)
        notes = kNameGone;
    _facts = *facts;
    return notes;
}

bool WatchedItem::conclude() {
    std::uint32_t notes = notesOfMask();
    if (_seen & (IN_ATTRIB | IN_MODIFY))
        notes |= notesOfLook();
    if (_seen & IN_MOVE_SELF)
        _path = isHeld() ? pathOf(_descriptor) : std::string();
    _seen = 0;
    _isUncertain = false;
    if (!_isAsked || (notes & _wanted) == 0)
        return false;
    const bool isFirst = _pending == 0;
    _pending |= notes & _wanted;
    return isFirst;
}

struct kevent WatchedItem::event() const {
    struct kevent event {};
    event.ident = static_cast<uintptr_t>(_descriptor);
    event.filter = EVFILT_VNODE;
    event.flags = _flags;
    event.fflags = _pending;
    event.udata = _user;
    return event;
}

bool WatchedItem::staysAfterReturn() {
    if (_flags & EV_CLEAR)
        _pending = 0;
    return isPending();
}

}  // namespace kernelqueue
