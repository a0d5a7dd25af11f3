// SPDX-License-Identifier: MIT
#include "CoreServices/MountLookup.h"

#include "CoreServices/MostLinks.h"

#include <algorithm>
#include <climits>
#include <map>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace coreservices {

namespace {

constexpr std::string_view kOwnAnswers[] = {
    "bcachefs", "btrfs", "configfs", "cramfs", "debugfs", "devpts",   "devtmpfs", "efivarfs",
    "erofs",    "exfat", "ext2",     "ext3",   "ext4",    "f2fs",     "hfs",      "hfsplus",
    "iso9660",  "jfs",   "minix",    "msdos",  "nilfs2",  "ntfs",     "ntfs3",    "overlay",
    "proc",     "ramfs", "reiserfs", "rootfs", "romfs",   "squashfs", "sysfs",    "tmpfs",
    "tracefs",  "ubifs", "udf",      "ufs",    "vfat",    "xfs",      "zfs"};

using Places = std::map<std::pair<uint64_t, std::string_view>, const Mount*>;

bool isAtOrAbove(std::string_view point, std::string_view path) {
    if (point == "/")
        return !path.empty() && path[0] == '/';
    return path.substr(0, point.size()) == point &&
           (path.size() == point.size() || path[point.size()] == '/');
}

// The mount on "/" that lies on no other one there.
const Mount* bottomOfRoot(const std::vector<Mount>& mounts) {
    const Mount* bottom = nullptr;
    for (const Mount& mount : mounts)
        if (mount.point == "/" && (bottom == nullptr || bottom->parent == mount.id))
            bottom = &mount;
    return bottom;
}

// Several mounts may lie on each other. No more steps than there are mounts: a table that was read
// while it changed may tell anything.
const Mount* topmostAt(std::string_view point, const Mount* below, const Places& places) {
    for (size_t step = 0; step < places.size(); ++step) {
        auto found = places.find({below->id, point});
        if (found == places.end() || found->second == below)
            break;
        below = found->second;
    }
    return below;
}

// Goes the way of a path lookup, from one mount to the next.
const Mount* reachedAt(std::string_view point, const Mount* root, const Places& places) {
    const Mount* reached = topmostAt("/", root, places);
    for (size_t end = 1; point.size() > 1 && end <= point.size(); ++end)
        if (end == point.size() || point[end] == '/')
            reached = topmostAt(point.substr(0, end), reached, places);
    return reached;
}

// Components still to be walked, the next one last.
std::vector<std::string> reversedComponents(const std::string& path) {
    std::vector<std::string> components;
    size_t begin = 0;
    while (begin < path.size()) {
        size_t end = std::min(path.find('/', begin), path.size());
        if (end > begin)
            components.push_back(path.substr(begin, end - begin));
        begin = end + 1;
    }
    std::reverse(components.begin(), components.end());
    return components;
}

// The folder and a component below it; "" is the root.
std::string joined(const std::string& folder, const std::string& component) {
    if (component == ".")
        return folder;
    if (component == "..")
        return folder.substr(0, folder.empty() ? 0 : folder.rfind('/'));
    return folder + "/" + component;
}

// Where the link leads; empty for what is none, and for what is not asked.
std::string linkTarget(const std::string& path, const std::vector<Mount>& mounts) {
    const Mount* mount = mountCovering(path, mounts);
    if (mount == nullptr || !answersByItself(*mount))
        return {};
    char target[PATH_MAX];
    ssize_t length = readlink(path.c_str(), target, sizeof target);
    return length > 0 ? std::string(target, static_cast<size_t>(length)) : std::string();
}

}  // namespace

std::vector<Mount> reachableMounts(const std::vector<Mount>& mounts) {
    const Mount* root = bottomOfRoot(mounts);
    // In a changed root that is no mount: nothing to start from.
    if (root == nullptr)
        return mounts;
    Places places;
    for (const Mount& mount : mounts)
        places[{mount.parent, mount.point}] = &mount;
    std::vector<Mount> reachable;
    for (const Mount& mount : mounts)
        if (reachedAt(mount.point, root, places) == &mount)
            reachable.push_back(mount);
    return reachable;
}

bool answersByItself(const Mount& mount) {
    return std::find(std::begin(kOwnAnswers), std::end(kOwnAnswers), mount.type) !=
           std::end(kOwnAnswers);
}

const Mount* mountCovering(const std::string& path, const std::vector<Mount>& mounts) {
    const Mount* covering = nullptr;
    for (const Mount& mount : mounts)
        if (isAtOrAbove(mount.point, path) &&
            (covering == nullptr || mount.point.size() >= covering->point.size()))
            covering = &mount;
    return covering;
}

std::string pathWithoutLinks(const std::string& path, const std::vector<Mount>& mounts) {
    if (path.empty() || path[0] != '/')
        return {};
    std::vector<std::string> rest = reversedComponents(path);
    std::string done;
    for (int links = 0; !rest.empty();) {
        std::string next = joined(done, rest.back());
        rest.pop_back();
        std::string target = next.size() > done.size() ? linkTarget(next, mounts) : std::string();
        if (target.empty()) {
            done = std::move(next);
            continue;
        }
        if (++links > kMostLinks)
            return {};
        if (target[0] == '/')
            done.clear();
        std::vector<std::string> through = reversedComponents(target);
        rest.insert(rest.end(), through.begin(), through.end());
    }
    return done.empty() ? "/" : done;
}

const Mount* mountOf(const std::string& path, const std::vector<Mount>& mounts) {
    std::string real = pathWithoutLinks(path, mounts);
    const Mount* mount = mountCovering(real, mounts);
    bool isMissing = mount != nullptr && answersByItself(*mount) && access(real.c_str(), F_OK) != 0;
    return isMissing ? nullptr : mount;
}

}  // namespace coreservices
