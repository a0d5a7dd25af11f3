// SPDX-License-Identifier: MIT
#include "FolderWalk.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fsevents {

namespace {

constexpr std::size_t kRoomForEntries = 32 * 1024;
// Every level keeps a descriptor.
constexpr int kDeepest = 200;

bool isFolder(int parent, const dirent64& entry) {
    if (entry.d_type != DT_UNKNOWN)
        return entry.d_type == DT_DIR;
    struct stat item {};
    return fstatat(parent, entry.d_name, &item, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(item.st_mode);
}

bool isSelfOrParent(const char* name) {
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

// What has been moved or removed meanwhile is told by the kernel.
bool isGone(int error) {
    return error == ENOENT || error == ENOTDIR || error == ELOOP;
}

}  // namespace

void FolderWalk::enter(Folder parent, int parentDescriptor, std::string_view name) {
    if (_observer.isExcluded(parent, name))
        return;
    if (_depth >= kDeepest)
        return _observer.notFollowed(parent, name, ENAMETOOLONG);
    const std::string text(name);
    const int descriptor = openat(parentDescriptor, text.c_str(),
                                  O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) {
        if (!isGone(errno))
            _observer.notFollowed(parent, name, errno);
        return;
    }
    ++_depth;
    enterOpen(parent, text, descriptor);
    --_depth;
    close(descriptor);
}

void FolderWalk::enterOpen(Folder parent, std::string_view name, int descriptor) {
    const int watch = _kernel.addFolder(descriptor);
    if (watch < 0)
        return _observer.notFollowed(parent, name, errno);
    const Folder folder = place(parent, name, watch);
    if (folder != kNoFolder)
        list(folder, descriptor);
}

// kNoFolder for a folder that was there before.
Folder FolderWalk::place(Folder parent, std::string_view name, int watch) {
    const Folder known = _store.child(parent, name);
    if (known != kNoFolder) {
        if (_store.watchOf(known) == watch)
            return kNoFolder;
        _observer.replaced(known);
    }
    return _store.add(parent, name, watch);
}

void FolderWalk::list(Folder folder, int descriptor) {
    if (++_listed % kFoldersBetweenCollections == 0)
        _kernel.collect();
    const std::size_t begin = _names.size();
    listNames(folder, descriptor);
    const std::size_t end = _names.size();
    for (std::size_t at = begin; at < end;) {
        const std::string name(_names.data() + at);
        at += name.size() + 1;
        enter(folder, descriptor, name);
    }
    _names.resize(begin);
}

void FolderWalk::listNames(Folder folder, int descriptor) {
    _entries.resize(kRoomForEntries);
    ssize_t count = 0;
    while ((count = getdents64(descriptor, _entries.data(), _entries.size())) > 0) {
        const char* const end = _entries.data() + count;
        for (const char* at = _entries.data(); at < end;) {
            const auto& entry = *reinterpret_cast<const dirent64*>(at);
            at += entry.d_reclen;
            if (isSelfOrParent(entry.d_name))
                continue;
            const bool goesDeeper = isFolder(descriptor, entry);
            _observer.found(folder, entry.d_name, goesDeeper);
            if (goesDeeper)
                _names.insert(_names.end(), entry.d_name, entry.d_name + strlen(entry.d_name) + 1);
        }
    }
}

}  // namespace fsevents
