// SPDX-License-Identifier: MIT
#include "CoreServices/Volumes.h"

#include "CoreServices/MountLookup.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace coreservices {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kDiskLike[] = {"nfs", "nfs4", "cifs", "smb3",     "9p",
                                          "afs", "ceph", "zfs",  "glusterfs"};
// Disks of their own that the system may have, and still no volumes.
constexpr std::string_view kSystemDisks[] = {"/home", "/root", "/opt", "/srv", "/var", "/tmp"};
// A desktop mounts below /run/media; the rest of /run, and these, are the system's.
constexpr std::string_view kSystemFolders[] = {"/proc", "/sys", "/dev",     "/run",  "/boot",
                                               "/etc",  "/usr", "/var/lib", "/snap", "/nix"};

bool isIn(std::string_view path, std::string_view folder) {
    return path.size() > folder.size() && path.substr(0, folder.size()) == folder &&
           path[folder.size()] == '/';
}

bool isAtOrIn(std::string_view path, std::string_view folder) {
    return path == folder || isIn(path, folder);
}

bool holdsFiles(const Mount& mount) {
    std::string_view type = mount.type;
    return mount.source.compare(0, 5, "/dev/") == 0 || type.substr(0, 5) == "fuse." ||
           type == "fuseblk" ||
           std::find(std::begin(kDiskLike), std::end(kDiskLike), type) != std::end(kDiskLike);
}

bool isSystems(std::string_view point) {
    if (isIn(point, "/run/media"))
        return false;
    if (std::find(std::begin(kSystemDisks), std::end(kSystemDisks), point) !=
        std::end(kSystemDisks))
        return true;
    return std::any_of(std::begin(kSystemFolders), std::end(kSystemFolders),
                       [point](std::string_view folder) { return isAtOrIn(point, folder); });
}

bool liesIn(const std::string& point, const std::string& folder) {
    return isIn(point, folder) && point.find('/', folder.size() + 1) == std::string::npos;
}

bool isVolume(const Mount& mount, const std::string& folder) {
    // The mount on "/" is the start-up disk.
    if (mount.point == "/")
        return false;
    if (liesIn(mount.point, folder))
        return true;
    return holdsFiles(mount) && !isSystems(mount.point) && mount.root == "/";
}

bool showsTheSame(const Mount& mount, const Mount& other) {
    return !mount.device.empty() && mount.device == other.device && mount.root == other.root &&
           mount.source == other.source;
}

// Whether an earlier mount shows the same file system, perhaps as something else than a volume.
bool isAgain(const Mount& mount, const std::vector<Mount>& mounts) {
    for (const Mount& other : mounts) {
        if (&other == &mount)
            break;
        if (other.point != mount.point && showsTheSame(mount, other))
            return true;
    }
    return false;
}

std::string leafOf(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

bool contains(const std::vector<std::string>& list, const std::string& value) {
    return std::find(list.begin(), list.end(), value) != list.end();
}

bool isEmptyFolder(const std::string& path) {
    std::error_code error;
    bool empty = fs::is_empty(path, error);
    return empty && !error;
}

// Whether nothing is shown there. Nobody waits for a server to learn it.
bool leadsNowhere(const std::string& path, const std::vector<Mount>& mounts) {
    const Mount* mount = mountCovering(path, mounts);
    if (path.empty() || (mount != nullptr && !answersByItself(*mount)))
        return path.empty();
    std::error_code error;
    return !fs::exists(path, error) || isEmptyFolder(path);
}

// A name no entry has yet: the wanted one, else with a number behind it.
std::string freeName(const std::string& wanted, const std::vector<VolumeEntry>& entries) {
    auto isTaken = [&](const std::string& name) {
        return std::any_of(entries.begin(), entries.end(),
                           [&](const VolumeEntry& entry) { return entry.name == name; });
    };
    std::string name = wanted;
    for (int number = 1; isTaken(name); ++number)
        name = wanted + " " + std::to_string(number);
    return name;
}

void markSurplus(std::vector<VolumeEntry>& entries) {
    std::vector<std::string> shown;
    for (const VolumeEntry& entry : entries)
        if (entry.state == VolumeState::MountPoint)
            shown.push_back(entry.target);
    for (VolumeEntry& entry : entries) {
        if (entry.state != VolumeState::StartupLink && entry.state != VolumeState::Link)
            continue;
        if (contains(shown, entry.target))
            entry.state = VolumeState::SurplusLink;
        shown.push_back(entry.target);
    }
}

}  // namespace

std::vector<std::string> volumePoints(const std::vector<Mount>& mounts, const std::string& folder) {
    std::vector<std::string> points;
    for (const Mount& mount : mounts)
        if (isVolume(mount, folder) && !contains(points, mount.point) &&
            (liesIn(mount.point, folder) || !isAgain(mount, mounts)))
            points.push_back(mount.point);
    return points;
}

Volumes::Volumes(std::string folder, std::string startupName)
    : _folder(std::move(folder)), _startupName(std::move(startupName)) {
}

std::vector<VolumeEntry> Volumes::list(const std::vector<Mount>& mounts) const {
    std::vector<std::string> volumes = volumePoints(mounts, _folder);
    std::vector<VolumeEntry> entries = present(volumes, mounts);
    auto isShown = [&](const std::string& target) {
        return std::any_of(entries.begin(), entries.end(), [&](const VolumeEntry& entry) {
            return entry.target == target && entry.state <= VolumeState::Link;
        });
    };
    if (!isShown("/"))
        entries.push_back({freeName(_startupName, entries), VolumeState::Missing, "/"});
    for (const std::string& point : volumes)
        if (!isShown(point))
            entries.push_back({freeName(leafOf(point), entries), VolumeState::Missing, point});
    return entries;
}

std::vector<VolumeEntry> Volumes::present(const std::vector<std::string>& volumes,
                                          const std::vector<Mount>& mounts) const {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(_folder, error), end; !error && entry != end;
         entry.increment(error))
        names.push_back(entry->path().filename());
    std::sort(names.begin(), names.end());
    std::vector<VolumeEntry> entries;
    for (const std::string& name : names)
        entries.push_back(describe(name, volumes, mounts));
    markSurplus(entries);
    return entries;
}

VolumeEntry Volumes::describe(const std::string& name, const std::vector<std::string>& volumes,
                              const std::vector<Mount>& mounts) const {
    std::string path = _folder + "/" + name;
    // What is mounted is not looked at: a share whose server is gone would keep us waiting.
    if (contains(volumes, path))
        return {name, VolumeState::MountPoint, path};
    std::error_code error;
    fs::file_status status = fs::symlink_status(path, error);
    if (fs::is_symlink(status))
        return describeLink(name, volumes, mounts);
    bool folder = fs::is_directory(status);
    return {name, folder ? VolumeState::PlainFolder : VolumeState::ForeignEntry, {}};
}

// Only a link that says "/" itself names the start-up disk: that is how it is looked for.
VolumeEntry Volumes::describeLink(const std::string& name, const std::vector<std::string>& volumes,
                                  const std::vector<Mount>& mounts) const {
    std::error_code error;
    std::string target = fs::read_symlink(_folder + "/" + name, error);
    if (target == "/")
        return {name, VolumeState::StartupLink, target};
    if (contains(volumes, target))
        return {name, VolumeState::Link, target};
    std::string full = target.empty() || target[0] == '/' ? target : _folder + "/" + target;
    std::string real = pathWithoutLinks(full, mounts);
    if (contains(volumes, real))
        return {name, VolumeState::Link, real};
    bool stale = leadsNowhere(real, mounts);
    return {name, stale ? VolumeState::StaleLink : VolumeState::ForeignLink, target};
}

std::vector<VolumesChange> Volumes::mend(const std::vector<Mount>& mounts) const {
    std::vector<VolumesChange> changes;
    auto note = [&](VolumesChange::Kind kind, std::string path, std::string target, int result) {
        changes.push_back({kind, std::move(path), std::move(target), result == 0 ? 0 : errno});
    };
    if (!fs::exists(_folder))
        note(VolumesChange::Kind::MadeFolder, _folder, {}, mkdir(_folder.c_str(), 0755));
    // Stale ones first: a volume mounted again gets its own name back.
    for (const VolumeEntry& entry : list(mounts)) {
        std::string path = _folder + "/" + entry.name;
        if (entry.state == VolumeState::StaleLink)
            note(VolumesChange::Kind::RemovedLink, path, entry.target, unlink(path.c_str()));
    }
    for (const VolumeEntry& entry : list(mounts)) {
        std::string path = _folder + "/" + entry.name;
        if (entry.state == VolumeState::Missing)
            note(VolumesChange::Kind::MadeLink, path, entry.target,
                 symlink(entry.target.c_str(), path.c_str()));
    }
    return changes;
}

const char* describe(VolumeState state) {
    static constexpr const char* texts[] = {"start-up disk", "mount point",  "link",
                                            "missing",       "stale link",   "surplus link",
                                            "foreign link",  "plain folder", "foreign entry"};
    return texts[static_cast<size_t>(state)];
}

}  // namespace coreservices
