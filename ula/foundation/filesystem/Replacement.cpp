// SPDX-License-Identifier: MIT
#include "ula/foundation/filesystem/Replacement.h"

#include "ula/foundation/filesystem/HiddenName.h"

#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <utility>

namespace tav::filesystem {

namespace {

constexpr int kMostLinks = 40;
constexpr const char* kAccessList = "system.posix_acl_access";

/// The path behind a chain of symbolic links; the last one may name nothing. Fails: errno.
bool followLinks(std::string& path) {
    for (int links = 0; links < kMostLinks; ++links) {
        char target[PATH_MAX];
        const ssize_t length =
            retryInterrupted([&] { return readlink(path.c_str(), target, sizeof target); });
        if (length < 0)
            return errno == EINVAL || errno == ENOENT;  // no link, or nothing yet
        const std::string_view view(target, static_cast<std::size_t>(length));
        if (view.substr(0, 1) == "/")
            path = view;
        else
            path = path.substr(0, path.rfind('/') + 1).append(view);
    }
    errno = ELOOP;
    return false;
}

}  // namespace

DurableFile::Replacement::Replacement(const String& path, DurableFileOptions options)
    : _path(path.toStdString()), _options(std::move(options)) {
    _failed = !(open() || fail("cannot write", errno));
}

bool DurableFile::Replacement::open() {
    std::string path = _path;
    if (path.find('\0') != std::string::npos) {
        errno = EINVAL;
        return false;
    }
    if (!_options.onlyNew && !followLinks(path))
        return false;
    const std::size_t slash = path.rfind('/');
    _leaf = path.substr(slash + 1);
    _folderPath = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    if (_leaf.empty()) {
        errno = path.empty() ? ENOENT : EISDIR;
        return false;
    }
    _folder = Descriptor(retryInterrupted(
        [&] { return ::open(_folderPath.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    return _folder && findOldFile() && createNewFile() && copyPermissions();
}

bool DurableFile::Replacement::findOldFile() {
    if (fstatat(_folder.get(), _leaf.c_str(), &_old, AT_SYMLINK_NOFOLLOW) != 0)
        return errno == ENOENT;
    if (_options.onlyNew) {
        errno = EEXIST;
        return false;
    }
    _hasOld = true;
    if (!S_ISREG(_old.st_mode)) {
        errno = S_ISDIR(_old.st_mode) ? EISDIR : EINVAL;
        return false;
    }
    // Renaming over a file asks nobody whether it may be written.
    return faccessat(_folder.get(), _leaf.c_str(), W_OK, AT_EACCESS) == 0;
}

bool DurableFile::Replacement::createNewFile() {
    // Private until it has the old one's owner and mode.
    const mode_t mode = _hasOld ? _old.st_mode & 0700 : 0666;
    _isUnnamed = true;
    _file = Descriptor(retryInterrupted(
        [&] { return openat(_folder.get(), ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, mode); }));
    // A file without a name gets one through /proc.
    if (_file && access("/proc/self/fd", X_OK) == 0) {
        lock(_file);
        return true;
    }
    if (!_file && errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL)
        return false;

    _isUnnamed = false;
    return createNamedFile(mode);
}

/// For file systems without unnamed files. Until it is locked, whoever clears up after dead savers
/// may take it for a leftover; then another one is made.
bool DurableFile::Replacement::createNamedFile(mode_t mode) {
    const std::string name = ownName();
    for (int i = 0; i < kMostCollisions; ++i) {
        removeHidden(name);
        _file = Descriptor(retryInterrupted([&] {
            return openat(_folder.get(), name.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC,
                          mode);
        }));
        if (!_file)
            return false;
        _newName = name;
        lock(_file);
        struct stat facts {};
        if (fstat(_file.get(), &facts) != 0)
            return false;
        if (facts.st_nlink != 0)
            return true;
    }
    errno = EEXIST;
    return false;
}

bool DurableFile::Replacement::copyPermissions() {
    if (!_hasOld)
        return true;
    struct stat fresh {};
    if (fstat(_file.get(), &fresh) != 0)
        return false;
    // Only a privileged process can give a file away: another one keeps what it may.
    const bool sameOwner = fresh.st_uid == _old.st_uid && fresh.st_gid == _old.st_gid;
    if (!sameOwner && fchown(_file.get(), _old.st_uid, _old.st_gid) != 0 && errno != EPERM)
        return false;
    return fchmod(_file.get(), _old.st_mode & 07777) == 0 && copyAccessList();
}

bool DurableFile::Replacement::copyAccessList() {
    char list[4096];
    const std::string old = _folderPath + "/" + _leaf;
    const ssize_t size = lgetxattr(old.c_str(), kAccessList, list, sizeof list);
    if (size < 0)
        return errno == ENODATA || errno == ENOTSUP;
    return fsetxattr(_file.get(), kAccessList, list, static_cast<std::size_t>(size), 0) == 0;
}

bool DurableFile::Replacement::write(std::string_view bytes) {
    while (!_failed && !bytes.empty()) {
        const ssize_t written =
            retryInterrupted([&] { return ::write(_file.get(), bytes.data(), bytes.size()); });
        _failed = written <= 0;
        if (_failed)
            fail("cannot write", written < 0 ? errno : EIO);
        else
            bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    // Large files are on their way to the disk before they are waited for.
    if (_options.onlyNew && !_failed)
        sync_file_range(_file.get(), 0, 0, SYNC_FILE_RANGE_WRITE);
    return !_failed;
}

bool DurableFile::Replacement::fail(const char* what, int errorNumber) {
    _exists = errorNumber == EEXIST;
    _error = std::string(what) + " \"" + _path + "\": " + std::strerror(errorNumber);
    return false;
}

void DurableFile::Replacement::lock(const Descriptor& file) {
    retryInterrupted([&] { return flock(file.get(), LOCK_EX); });
}

std::string DurableFile::Replacement::ownName() const {
    const auto serial = reinterpret_cast<std::uintptr_t>(this);
    return hiddenName(_leaf, kNewPurpose) + std::to_string(getpid()) + "-" + std::to_string(serial);
}

}  // namespace tav::filesystem
