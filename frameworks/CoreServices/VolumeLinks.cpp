// SPDX-License-Identifier: MIT
#include "CoreServices/VolumeLinks.h"

#include "CoreFoundation/FolderStream.h"
#include "CoreServices/MountInfo.h"

#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace coreservices {

namespace {

constexpr std::string_view kVolumesStart = "/Volumes/";

std::string linkTarget(const std::string& path) {
    char target[PATH_MAX];
    const ssize_t length = readlink(path.c_str(), target, sizeof target);
    return length > 0 ? std::string(target, static_cast<std::size_t>(length)) : std::string();
}

bool isMountPoint(const std::string& path) {
    struct statx item;
    return statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, STATX_TYPE,
                 &item) == 0 &&
           isMountRoot(item);
}

// Where the link of a volume leads; empty for any other entry.
std::string volumeOf(const std::string& link) {
    std::string target = linkTarget(link);
    if (target.size() < 2 || target.front() != '/' || !isMountPoint(target))
        target.clear();
    return target;
}

bool isAtOrIn(const std::string& path, const std::string& folder) {
    return path.compare(0, folder.size(), folder) == 0 &&
           (path.size() == folder.size() || path[folder.size()] == '/');
}

}  // namespace

VolumeLinks::VolumeLinks() {
    const cf::FolderStream folder(opendir(kVolumesFolder));
    if (folder == nullptr)
        return;
    while (const dirent* entry = readdir(folder.get())) {
        if (entry->d_type != DT_LNK && entry->d_type != DT_UNKNOWN)
            continue;
        std::string link = std::string(kVolumesStart) + entry->d_name;
        std::string target = linkTarget(link);
        if (target.size() > 1 && target.front() == '/')
            _links.emplace_back(std::move(link), std::move(target));
    }
}

std::string VolumeLinks::name(const std::string& path) const {
    for (const auto& [link, target] : _links) {
        if (isAtOrIn(path, target) && isMountPoint(target))
            return link + path.substr(target.size());
    }
    return path;
}

bool isVolumeLink(std::string_view path) {
    if (path.substr(0, kVolumesStart.size()) != kVolumesStart ||
        path.find('/', kVolumesStart.size()) != std::string_view::npos)
        return false;
    return !volumeOf(std::string(path)).empty();
}

std::string resolvedPath(const std::string& path) {
    const std::unique_ptr<char, decltype(&free)> resolved(realpath(path.c_str(), nullptr), free);
    return resolved == nullptr ? std::string() : VolumeLinks().name(resolved.get());
}

}  // namespace coreservices
