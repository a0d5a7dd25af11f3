// SPDX-License-Identifier: MIT
#include "AppKit/MoveItem.h"

#include "CoreFoundation/Descriptor.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>

namespace appkit {

namespace {

int makePlaceholder(const Place& place, bool folder) {
    if (folder)
        return mkdirat(place.folder, place.name.c_str(), 0700) == 0 ? 0 : errno;
    cf::Descriptor file(openat(place.folder, place.name.c_str(),
                               O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    return file ? 0 : errno;
}

}  // namespace

int moveWithoutReplacing(const Place& from, const Place& to) {
    if (renameat2(from.folder, from.name.c_str(), to.folder, to.name.c_str(), RENAME_NOREPLACE) ==
        0)
        return 0;
    int error = errno;
    // EINVAL also means a folder moved into itself; the way round fails the same then.
    return error == EINVAL || error == ENOSYS ? moveOverPlaceholder(from, to) : error;
}

int moveOverPlaceholder(const Place& from, const Place& to) {
    struct stat info;
    if (fstatat(from.folder, from.name.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0)
        return errno;
    bool folder = S_ISDIR(info.st_mode);
    if (int error = makePlaceholder(to, folder))
        return error;
    if (renameat(from.folder, from.name.c_str(), to.folder, to.name.c_str()) == 0)
        return 0;
    int error = errno;
    unlinkat(to.folder, to.name.c_str(), folder ? AT_REMOVEDIR : 0);
    return error;
}

}  // namespace appkit
