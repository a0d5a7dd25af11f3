// SPDX-License-Identifier: MIT
#include "Foundation/BirthTime.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace foundation {

std::optional<timespec> birthTimeOf(const char* path, Links links) {
    const int flags = AT_NO_AUTOMOUNT | (links == Links::Keep ? AT_SYMLINK_NOFOLLOW : 0);
    struct statx info {};
    if (statx(AT_FDCWD, path, flags, STATX_BTIME, &info) != 0 || (info.stx_mask & STATX_BTIME) == 0)
        return std::nullopt;
    // What programs that make whole file systems leave in them.
    if (info.stx_btime.tv_sec == 0 && info.stx_btime.tv_nsec == 0)
        return std::nullopt;
    return timespec{info.stx_btime.tv_sec, info.stx_btime.tv_nsec};
}

}  // namespace foundation
