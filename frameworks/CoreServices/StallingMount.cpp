// SPDX-License-Identifier: MIT
#include "CoreServices/StallingMount.h"

#include "CoreServices/MostLinks.h"

#include <algorithm>
#include <climits>
#include <string_view>
#include <unistd.h>

namespace coreservices {

namespace {

constexpr std::string_view kStallingTypes[] = {"9p",   "afs",  "autofs",    "ceph",  "cifs",
                                               "coda", "fuse", "fuseblk",   "davfs", "nfs",
                                               "nfs4", "smb3", "glusterfs", "ncpfs"};

bool isAtOrIn(const std::string& path, const std::string& folder) {
    if (folder == "/")
        return true;
    return path.compare(0, folder.size(), folder) == 0 &&
           (path.size() == folder.size() || path[folder.size()] == '/');
}

// A later mount on the same point hides the earlier one.
const Mount* mountAbove(const std::string& path, const std::vector<Mount>& mounts) {
    const Mount* best = nullptr;
    for (const Mount& mount : mounts)
        if (isAtOrIn(path, mount.point) &&
            (best == nullptr || mount.point.size() >= best->point.size()))
            best = &mount;
    return best;
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

bool mayStall(const Mount& mount) {
    std::string_view type = mount.type;
    return type.substr(0, 5) == "fuse." ||
           std::find(std::begin(kStallingTypes), std::end(kStallingTypes), type) !=
               std::end(kStallingTypes);
}

std::optional<std::string> stallingMountOn(const std::string& path,
                                           const std::vector<Mount>& mounts) {
    if (std::none_of(mounts.begin(), mounts.end(), mayStall))
        return std::nullopt;
    std::string done;
    std::string rest = path;
    for (int links = 0;;) {
        const Mount* mount = mountAbove(done.empty() ? "/" : done, mounts);
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
