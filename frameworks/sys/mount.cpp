// SPDX-License-Identifier: MIT
#include <sys/mount.h>

#include "CoreServices/MountLookup.h"
#include "DiskArbitration/Description.h"
#include "sys/GuardedCall.h"

#include <cerrno>
#include <cstring>

using coreservices::Mount;

namespace {

template <size_t Size>
void store(char (&field)[Size], const std::string& text) {
    size_t length = text.copy(field, Size - 1);
    field[length] = '\0';
}

int fill(const char* path, struct statfs* information) {
    coreservices::MountList mounts = coreservices::currentMounts();
    const Mount* mount = coreservices::mountOf(path != nullptr ? path : "", *mounts);
    if (mount == nullptr) {
        errno = ENOENT;
        return -1;
    }
    *information = {};
    information->f_flags = mount->isReadOnly ? MNT_RDONLY : 0;
    store(information->f_fstypename, mount->type);
    store(information->f_mntonname, mount->point);
    store(information->f_mntfromname, diskarbitration::mountedFromName(*mount, *mounts));
    return 0;
}

}  // namespace

int statfs(const char* path, struct statfs* information) {
    return kernelqueue::guardedCall([&] { return fill(path, information); });
}
