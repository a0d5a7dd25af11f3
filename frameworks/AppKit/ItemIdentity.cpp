// SPDX-License-Identifier: MIT
#include "AppKit/ItemIdentity.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace appkit {

bool readIdentity(int folder, const std::string& name, ItemIdentity* identity) {
    struct statx info;
    if (statx(folder, name.c_str(), AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, STATX_INO | STATX_BTIME,
              &info) != 0)
        return false;
    identity->inode = info.stx_ino;
    identity->birthTimeNs = 0;
    if ((info.stx_mask & STATX_BTIME) != 0)
        identity->birthTimeNs = info.stx_btime.tv_sec * 1'000'000'000 + info.stx_btime.tv_nsec;
    return true;
}

}  // namespace appkit
