// SPDX-License-Identifier: MIT
#include "CoreServices/StallingMount.h"

#include "CoreServices/MostLinks.h"
#include "CoreServices/MountLookup.h"

#include <algorithm>
#include <climits>
#include <unistd.h>

namespace coreservices {

namespace {

constexpr std::string_view kNetworkTypes[] = {
    "9p",        "afs",    "beegfs", "ceph",  "cifs",   "coda",     "davfs",
    "glusterfs", "lustre", "ncp",    "ncpfs", "nfs",    "nfs4",     "orangefs",
    "prl_fs",    "pvfs2",  "smb3",   "smbfs", "vboxsf", "virtiofs", "vmhgfs"};

// What another process answers for, which may have a server behind it.
constexpr std::string_view kProcessTypes[] = {"autofs", "fuse", "fuseblk"};

template <size_t Count>
bool isIn(const std::string_view (&list)[Count], std::string_view type) {
    return std::find(std::begin(list), std::end(list), type) != std::end(list);
}

std::string linkTarget(const std::string& path) {
    char target[PATH_MAX];
    ssize_t length = readlink(path.c_str(), target, sizeof target);
    return length > 0 ? std::string(target, static_cast<size_t>(length)) : std::string();
}

std::string takeComponent(std::string& rest) {
    size_t start = std::min(rest.find_first_not_of('/'), rest.size());
    size_t end = std::min(rest.find('/', start), rest.size());
    std::string name = rest.substr(start, end - start);
    rest.erase(0, end);
    return name;
}

}  // namespace

bool isNetworkType(std::string_view type) {
    return isIn(kNetworkTypes, type);
}

bool mayStall(const Mount& mount) {
    return isNetworkType(mount.type) || isIn(kProcessTypes, mount.type) ||
           mount.type.starts_with("fuse.");
}

std::optional<std::string> stallingMountOn(const std::string& path,
                                           const std::vector<Mount>& mounts) {
    if (std::none_of(mounts.begin(), mounts.end(), mayStall))
        return std::nullopt;
    std::string done;
    std::string rest = path;
    for (int links = 0;;) {
        const Mount* mount = mountCovering(done.empty() ? "/" : done, mounts);
        if (mount != nullptr && mayStall(*mount))
            return mount->point;
        // Nothing is asked of `done` before it is known to answer.
        std::string target = linkTarget(done);
        if (!target.empty() && ++links <= kMostLinks) {
            done = target[0] == '/' ? std::string() : done.substr(0, done.rfind('/'));
            rest = target + "/" + rest;
        }
        std::string name = takeComponent(rest);
        if (name.empty())
            return std::nullopt;
        if (name == "..")
            done.erase(done.empty() ? 0 : done.rfind('/'));
        else if (name != ".")
            done += "/" + name;
    }
}

}  // namespace coreservices
