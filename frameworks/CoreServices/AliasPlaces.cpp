// SPDX-License-Identifier: MIT
#include "CoreServices/AliasPlaces.h"

#include "CoreServices/SystemMounter.h"

#include <algorithm>
#include <mntent.h>
#include <pwd.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace coreservices {

namespace {

bool isAtOrIn(const std::string& path, const std::string& folder) {
    if (folder == "/")
        return true;
    return path.compare(0, folder.size(), folder) == 0 &&
           (path.size() == folder.size() || path[folder.size()] == '/');
}

bool isMounted(const std::string& point, const std::vector<Mount>& mounts) {
    return std::any_of(mounts.begin(), mounts.end(),
                       [&](const Mount& mount) { return mount.point == point; });
}

std::string userName() {
    char buffer[4096];
    passwd entry;
    passwd* found = nullptr;
    if (getpwuid_r(geteuid(), &entry, buffer, sizeof buffer, &found) != 0 || found == nullptr)
        return {};
    return found->pw_name;
}

std::vector<std::string> pointsOf(const std::string& mountTable) {
    std::vector<std::string> points;
    FILE* file = setmntent(mountTable.c_str(), "re");
    if (file == nullptr)
        return points;
    char buffer[8192];
    mntent entry;
    while (getmntent_r(file, &entry, buffer, sizeof buffer) != nullptr)
        if (entry.mnt_dir[0] == '/' && entry.mnt_dir[1] != '\0')
            points.push_back(entry.mnt_dir);
    endmntent(file);
    return points;
}

// The folder's entry on the way to the path, or empty.
std::string entryOn(const std::string& path, const std::string& folder) {
    if (!isAtOrIn(path, folder) || path.size() < folder.size() + 2)
        return {};
    return path.substr(0, path.find('/', folder.size() + 1));
}

bool leadsNowhere(const std::string& path) {
    struct stat info;
    return lstat(path.c_str(), &info) != 0 ||
           (S_ISLNK(info.st_mode) && access(path.c_str(), F_OK) != 0);
}

}  // namespace

AliasPlaces AliasPlaces::ofProcess() {
    AliasPlaces places;
    std::string user = userName();
    if (!user.empty())
        places.mediaFolders = {"/media/" + user, "/run/media/" + user};
    places.mounts = [] { return parseMountInfo(readMountInfo()); };
    places.mounter = std::make_shared<SystemMounter>(places.patience, places.mountPatience);
    return places;
}

std::optional<UnmountedVolume> unmountedByTable(const std::string& path,
                                                const std::string& mountTable,
                                                const std::vector<Mount>& mounts) {
    for (const std::string& point : pointsOf(mountTable))
        if (isAtOrIn(path, point) && !isMounted(point, mounts))
            return UnmountedVolume{UnmountedVolume::Source::MountTable, point};
    return std::nullopt;
}

std::optional<UnmountedVolume> unmountedByLabel(const std::string& path,
                                                const AliasPlaces& places) {
    std::vector<std::string> folders = places.mediaFolders;
    folders.push_back(places.volumesFolder);
    for (const std::string& folder : folders) {
        std::string point = entryOn(path, folder);
        if (!point.empty() && leadsNowhere(point))
            return UnmountedVolume{UnmountedVolume::Source::Label, point};
    }
    return std::nullopt;
}

}  // namespace coreservices
