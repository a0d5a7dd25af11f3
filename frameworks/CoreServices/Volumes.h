// SPDX-License-Identifier: MIT
// The folder /Volumes: the start-up disk and every mounted volume under one name each.
#pragma once

#include "CoreServices/MountInfo.h"

#include <string>
#include <vector>

namespace coreservices {

enum class VolumeState {
    StartupLink,   // a link to "/"
    MountPoint,    // a folder on which a volume is mounted
    Link,          // a link to where a volume is mounted
    Missing,       // a mounted volume, or the start-up disk, without an entry; `name` is proposed
    StaleLink,     // a link to nothing, or to an empty folder where nothing is mounted
    SurplusLink,   // one more link to what another entry already shows
    ForeignLink,   // a link to some other place
    PlainFolder,   // a folder on which nothing is mounted
    ForeignEntry,  // neither folder nor link
};

struct VolumeEntry {
    std::string name;
    VolumeState state;
    std::string target;  // of links, missing ones too: where they lead; of mount points: their path
};

struct VolumesChange {
    enum class Kind { MadeFolder, MadeLink, RemovedLink } kind;
    std::string path;
    std::string target;
    int error = 0;  // errno where it failed
};

// The state of a volumes folder, taken from the folder itself and from a list of mounts.
// Thread: one at a time for an object; other processes may change the folder at any moment.
class __attribute__((visibility("default"))) Volumes {
public:
    // `folder` is absolute. `startupName` is what the start-up disk is called where it has no link.
    explicit Volumes(std::string folder = "/Volumes", std::string startupName = "Linux");

    // Entries in the order of their names, missing ones behind them in the order of mounting.
    std::vector<VolumeEntry> list(const std::vector<Mount>& mounts) const;

    // Makes missing links (the folder too) and removes stale ones. Folders, files and links to
    // other places are left alone, whoever made them. Gives what was tried.
    std::vector<VolumesChange> mend(const std::vector<Mount>& mounts) const;

private:
    VolumeEntry describe(const std::string& name, const std::vector<std::string>& volumes,
                         const std::vector<Mount>& mounts) const;
    VolumeEntry describeLink(const std::string& name, const std::vector<std::string>& volumes,
                             const std::vector<Mount>& mounts) const;
    std::vector<VolumeEntry> present(const std::vector<std::string>& volumes,
                                     const std::vector<Mount>& mounts) const;

    std::string _folder;
    std::string _startupName;
};

// Where the mounts lie that a user would call a volume: disks, shares and images, no file systems
// of the kernel's and none that the system itself is made of; and whatever is mounted right in
// `folder`. Each point once, and of the mounts of one file system, as bind mounts are, the first
// one only, unless they lie right in `folder`.
__attribute__((visibility("default"))) std::vector<std::string>
volumePoints(const std::vector<Mount>& mounts, const std::string& folder);

// In English, for listings: "start-up disk", "stale link".
__attribute__((visibility("default"))) const char* describe(VolumeState state);

}  // namespace coreservices
