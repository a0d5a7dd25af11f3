// SPDX-License-Identifier: MIT
// How a new file, written to its end, gets its place, and what is cleared away then.
#include "ula/foundation/filesystem/HiddenName.h"
#include "ula/foundation/filesystem/Replacement.h"
#include "ula/foundation/text/NumberConversion.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <unistd.h>

namespace tav::filesystem {

bool DurableFile::Replacement::commit() {
    if (_failed)
        return false;
    _failed = true;  // whatever comes, this was the one try
    _isCommitted = replace();
    return _isCommitted || fail("cannot replace", errno);
}

bool DurableFile::Replacement::setTime() {
    if (!_options.modificationTime)
        return true;
    const timespec times[2] = {{0, UTIME_OMIT},
                               {static_cast<time_t>(*_options.modificationTime), 0}};
    return futimens(_file.get(), times) == 0;
}

/// Gives the file its name, if nobody else has it.
bool DurableFile::Replacement::linkNew() {
    if (_isUnnamed) {
        const std::string handle = "/proc/self/fd/" + std::to_string(_file.get());
        return linkat(AT_FDCWD, handle.c_str(), _folder.get(), _leaf.c_str(), AT_SYMLINK_FOLLOW) ==
               0;
    }
    if (linkat(_folder.get(), _newName.c_str(), _folder.get(), _leaf.c_str(), 0) == 0)
        return true;
    if (errno != EPERM && errno != EOPNOTSUPP)
        return false;
    // Cards have no hard links.
    if (renameat2(_folder.get(), _newName.c_str(), _folder.get(), _leaf.c_str(),
                  RENAME_NOREPLACE) != 0)
        return false;
    _newName.clear();
    return true;
}

bool DurableFile::Replacement::syncNew() {
    if (_failed)
        return false;
    _failed = true;  // whatever comes, this was the one try
    return (setTime() && sync(_file)) || fail("cannot replace", errno);
}

bool DurableFile::Replacement::nameSyncedFile() {
    _isCommitted = linkNew();
    return _isCommitted || fail("cannot replace", errno);
}

/// For all files that have just been named in this folder, by one of them.
bool DurableFile::Replacement::syncFolder() {
    if (!sync(_folder))
        return false;
    // Where files have no names before, nobody leaves any behind.
    if (!_isUnnamed)
        removeLeftovers();
    return true;
}

void DurableFile::Replacement::giveUp(int reason) {
    _isCommitted = false;
    putBack();
    fail("cannot replace", reason);
}

bool DurableFile::Replacement::replace() {
    if (!setTime() || !sync(_file) || !nameNewFile() || !keepOldFile() || !putInPlace())
        return false;
    if (!sync(_folder)) {
        const int reason = errno;
        putBack();
        errno = reason;
        return false;
    }
    removeLeftovers();
    return true;
}

bool DurableFile::Replacement::sync(const Descriptor& descriptor) {
    if (!_options.sync)
        return true;
    // EINVAL: a file system on which this cannot be asked for; there is no more to be done.
    return retryInterrupted([&] { return fsync(descriptor.get()); }) == 0 || errno == EINVAL;
}

/// Links under a hidden name; what has that name is a leftover or another saver's, who will make
/// his again.
bool DurableFile::Replacement::link(int from, const char* name, const std::string& newName,
                                    int flags) {
    for (int i = 0; i < kMostCollisions; ++i) {
        if (linkat(from, name, _folder.get(), newName.c_str(), flags) == 0)
            return true;
        if (errno != EEXIST || !removeHidden(newName))
            return false;
    }
    return false;
}

bool DurableFile::Replacement::nameNewFile() {
    if (!_isUnnamed)
        return true;
    const std::string handle = "/proc/self/fd/" + std::to_string(_file.get());
    const std::string name = ownName();
    if (!link(AT_FDCWD, handle.c_str(), name, AT_SYMLINK_FOLLOW))
        return false;
    _newName = name;
    return true;
}

bool DurableFile::Replacement::linkOldFile(const std::string& name) {
    if (!link(_folder.get(), _leaf.c_str(), name, 0))
        return false;
    _oldName = name;
    return true;
}

/// The backup, and a way back should the folder not be synced.
bool DurableFile::Replacement::keepOldFile() {
    if (!_hasOld || (!_options.sync && _options.keepOldAs.empty()))
        return true;
    const std::string name = hiddenName(_leaf, "old");
    const auto cannotLink = [] {
        // No hard links here, not to this file, or it is gone by now.
        return errno == EPERM || errno == EOPNOTSUPP || errno == EMLINK || errno == ENOENT;
    };
    if (!linkOldFile(name))
        return cannotLink() && (_options.keepOldAs.empty() || copyOldFile());
    if (_options.keepOldAs.empty())
        return true;
    if (renameat(_folder.get(), name.c_str(), _folder.get(), _options.keepOldAs.c_str()) != 0)
        return false;
    // Renaming one name of a file over another of its names leaves both.
    removeHidden(name);
    _oldName.clear();
    return linkOldFile(name) || cannotLink();
}

bool DurableFile::Replacement::copyOldFile() {
    const Descriptor old(retryInterrupted(
        [&] { return openat(_folder.get(), _leaf.c_str(), O_RDONLY | O_CLOEXEC); }));
    if (!old)
        return errno == ENOENT;
    DurableFile copy(String(_folderPath + "/" + _options.keepOldAs), {.sync = _options.sync});
    const auto buffer = std::make_unique<char[]>(1 << 16);
    for (;;) {
        const ssize_t count =
            retryInterrupted([&] { return read(old.get(), buffer.get(), 1 << 16); });
        if (count < 0)
            return false;
        if (count == 0)
            return copy.commit();
        if (!copy.write({buffer.get(), static_cast<std::size_t>(count)}))
            return false;
    }
}

bool DurableFile::Replacement::putInPlace() {
    if (renameat(_folder.get(), _newName.c_str(), _folder.get(), _leaf.c_str()) != 0)
        return false;
    _newName.clear();
    return true;
}

void DurableFile::Replacement::putBack() {
    if (!_oldName.empty() &&
        renameat(_folder.get(), _oldName.c_str(), _folder.get(), _leaf.c_str()) == 0)
        _oldName.clear();
    else if (!_hasOld)
        unlinkat(_folder.get(), _leaf.c_str(), 0);
}

/// What savers of this file left behind when they were killed: hidden files that nobody holds a
/// lock on. Failing to remove one is no failure of the save.
void DurableFile::Replacement::removeLeftovers() {
    const std::string prefix = hiddenName(_leaf, kNewPurpose);
    const int copy = fcntl(_folder.get(), F_DUPFD_CLOEXEC, 0);
    DIR* entries = copy >= 0 ? fdopendir(copy) : nullptr;
    if (!entries) {
        const Descriptor unused(copy);
        return;
    }
    while (const dirent* entry = readdir(entries))
        if (std::string_view(entry->d_name).starts_with(prefix))
            removeIfAbandoned(entry->d_name);
    closedir(entries);
}

void DurableFile::Replacement::removeIfAbandoned(const char* name) {
    const Descriptor file(
        openat(_folder.get(), name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file || flock(file.get(), LOCK_EX | LOCK_NB) != 0)
        return;
    // A saver that has just finished may have begun anew under the name.
    struct stat locked {
    }, named{};
    if (fstat(file.get(), &locked) == 0 &&
        fstatat(_folder.get(), name, &named, AT_SYMLINK_NOFOLLOW) == 0 &&
        locked.st_ino == named.st_ino)
        removeHidden(name);
}

void DurableFile::Replacement::removeTraces() {
    if (!_newName.empty())
        removeHidden(_newName);
    if (!_oldName.empty())
        removeHidden(_oldName);
}

bool DurableFile::Replacement::removeHidden(const std::string& name) {
    return unlinkat(_folder.get(), name.c_str(), 0) == 0 || errno == ENOENT;
}

}  // namespace tav::filesystem
