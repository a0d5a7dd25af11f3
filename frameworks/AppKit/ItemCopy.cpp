// SPDX-License-Identifier: MIT
#include "AppKit/ItemCopy.h"

#include "CoreFoundation/Descriptor.h"
#include "CoreFoundation/FolderStream.h"

#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <vector>

namespace appkit {

namespace {

int copyTree(const Place& from, const Place& to);

// Calls function(name) for every entry of an open folder until one gives an error.
template <typename Function>
int forEachEntry(int folder, Function function) {
    int own = openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (own < 0)
        return errno;
    const cf::FolderStream entries(fdopendir(own));
    if (entries == nullptr) {
        ::close(own);
        return ENOMEM;
    }
    for (errno = 0; const dirent* entry = readdir(entries.get()); errno = 0) {
        std::string name = entry->d_name;
        if (name == "." || name == "..")
            continue;
        if (int error = function(name))
            return error;
    }
    return errno;
}

// What cannot be carried over (another owner, attributes the new file system does not know) is
// left.
void copyAttributes(int from, int to, const struct stat& info) {
    ssize_t size = flistxattr(from, nullptr, 0);
    std::vector<char> names(size > 0 ? static_cast<size_t>(size) : 0);
    size = flistxattr(from, names.data(), names.size());
    for (ssize_t at = 0; at < size;
         at += static_cast<ssize_t>(std::strlen(&names[size_t(at)])) + 1) {
        const char* name = &names[static_cast<size_t>(at)];
        char value[XATTR_SIZE_MAX];
        ssize_t length = fgetxattr(from, name, value, sizeof value);
        if (length >= 0)
            (void)fsetxattr(to, name, value, static_cast<size_t>(length), 0);
    }
    // The owner first: a change of owner takes the set-user-id bit away.
    if (fchown(to, info.st_uid, info.st_gid) != 0 &&
        fchown(to, static_cast<uid_t>(-1), info.st_gid) != 0)
        errno = 0;
    (void)fchmod(to, info.st_mode & 07777);
    const timespec times[] = {info.st_atim, info.st_mtim};
    (void)futimens(to, times);
}

int copyContent(int from, int to) {
    for (;;) {
        ssize_t moved = sendfile(to, from, nullptr, 1 << 30);
        if (moved == 0)
            return 0;
        if (moved < 0 && errno != EINTR)
            return errno;
    }
}

int copyFile(const Place& from, const Place& to, const struct stat& info) {
    cf::Descriptor source(
        openat(from.folder, from.name.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    if (!source)
        return errno;
    cf::Descriptor copy(openat(to.folder, to.name.c_str(),
                               O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!copy)
        return errno;
    if (int error = copyContent(source.get(), copy.get()))
        return error;
    copyAttributes(source.get(), copy.get(), info);
    // The original goes once the copy is there, so the copy has to be there for good.
    return fsync(copy.get()) == 0 && ::close(copy.release()) == 0 ? 0 : errno;
}

int copyFolder(const Place& from, const Place& to, const struct stat& info) {
    cf::Descriptor source(
        openat(from.folder, from.name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!source || mkdirat(to.folder, to.name.c_str(), 0700) != 0)
        return errno;
    cf::Descriptor copy(
        openat(to.folder, to.name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!copy)
        return errno;
    int error = forEachEntry(source.get(), [&](const std::string& name) {
        return copyTree({source.get(), name}, {copy.get(), name});
    });
    if (error == 0)
        copyAttributes(source.get(), copy.get(), info);
    return error != 0 || fsync(copy.get()) == 0 ? error : errno;
}

int copyLink(const Place& from, const Place& to, const struct stat& info) {
    char target[PATH_MAX + 1];
    ssize_t length = readlinkat(from.folder, from.name.c_str(), target, PATH_MAX);
    if (length < 0)
        return errno;
    target[length] = '\0';
    if (symlinkat(target, to.folder, to.name.c_str()) != 0)
        return errno;
    const timespec times[] = {info.st_atim, info.st_mtim};
    (void)!fchownat(to.folder, to.name.c_str(), info.st_uid, info.st_gid, AT_SYMLINK_NOFOLLOW);
    (void)utimensat(to.folder, to.name.c_str(), times, AT_SYMLINK_NOFOLLOW);
    return 0;
}

int copyTree(const Place& from, const Place& to) {
    struct stat info;
    if (fstatat(from.folder, from.name.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0)
        return errno;
    if (S_ISDIR(info.st_mode))
        return copyFolder(from, to, info);
    if (S_ISREG(info.st_mode))
        return copyFile(from, to, info);
    if (S_ISLNK(info.st_mode))
        return copyLink(from, to, info);
    return mknodat(to.folder, to.name.c_str(), info.st_mode, info.st_rdev) == 0 ? 0 : errno;
}

}  // namespace

int copyItem(const Place& from, const Place& to) {
    struct stat info;
    if (fstatat(to.folder, to.name.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0)
        return EEXIST;
    int error = copyTree(from, to);
    // A name that was taken meanwhile is another's.
    if (error != 0 && error != EEXIST)
        removeItem(to);
    return error;
}

int removeItem(const Place& place) {
    if (unlinkat(place.folder, place.name.c_str(), 0) == 0 || errno == ENOENT)
        return 0;
    if (errno != EISDIR)
        return errno;
    cf::Descriptor folder(
        openat(place.folder, place.name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!folder)
        return errno;
    // A folder of the user's that may not be changed would keep what it holds.
    if (faccessat(folder.get(), ".", W_OK | X_OK, AT_EACCESS) != 0)
        (void)fchmod(folder.get(), S_IRWXU);
    int error = forEachEntry(folder.get(), [&](const std::string& name) {
        return removeItem({folder.get(), name});
    });
    if (error != 0)
        return error;
    return unlinkat(place.folder, place.name.c_str(), AT_REMOVEDIR) == 0 ? 0 : errno;
}

}  // namespace appkit
