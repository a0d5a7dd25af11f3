// SPDX-License-Identifier: MIT
#include "CoreServices/AccessRights.h"

#include <algorithm>
#include <fcntl.h>
#include <iterator>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace coreservices {

namespace {

// An access list cannot take from the owner what the mode grants: the mode's bits are its entry.
bool judgesByModes(const struct statfs& fileSystem) {
    constexpr decltype(fileSystem.f_type) kXfs = 0x58465342;
    constexpr decltype(fileSystem.f_type) kKinds[] = {EXT4_SUPER_MAGIC, BTRFS_SUPER_MAGIC, kXfs,
                                                      TMPFS_MAGIC, F2FS_SUPER_MAGIC};
    return std::find(std::begin(kKinds), std::end(kKinds), fileSystem.f_type) != std::end(kKinds);
}

// A security module may refuse what modes grant.
bool hasLabels() {
    return access("/sys/fs/selinux/enforce", F_OK) == 0 || access("/sys/fs/smackfs", F_OK) == 0;
}

}  // namespace

AccessRights::AccessRights(int folder)
    : _folder(folder), _user(getuid()), _modesDecide(false), _isReadOnly(true) {
    struct statfs fileSystem;
    if (fstatfs(folder, &fileSystem) != 0)
        return;
    _isReadOnly = (fileSystem.f_flags & ST_RDONLY) != 0;
    _modesDecide = judgesByModes(fileSystem) && !hasLabels();
}

bool AccessRights::isGrantedByMode(const struct statx& item, unsigned int ownersBit) const {
    return _modesDecide && item.stx_uid == _user && (item.stx_mode & ownersBit) != 0;
}

bool AccessRights::isReadable(const char* name, const struct statx& item) const {
    return isGrantedByMode(item, S_IRUSR) || faccessat(_folder, name, R_OK, 0) == 0;
}

bool AccessRights::isWritable(const char* name, const struct statx& item) const {
    const bool mayBeRefused = _isReadOnly || (item.stx_attributes & STATX_ATTR_IMMUTABLE) != 0;
    if (!mayBeRefused && isGrantedByMode(item, S_IWUSR))
        return true;
    return faccessat(_folder, name, W_OK, 0) == 0;
}

}  // namespace coreservices
