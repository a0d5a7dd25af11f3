// SPDX-License-Identifier: MIT
#pragma once

#include "CoreServices/MountInfo.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace coreservices {

// What can make a place reachable that is not. Thread: any, several at a time.
class Mounter {
public:
    virtual ~Mounter() = default;

    // Under which path a place on the network can be reached now, or empty.
    virtual std::string pathOf(const std::string& url) = 0;

    // Each returns when it is mounted, when that has failed, or when it takes too long.
    virtual bool mountPlace(const std::string& url) = 0;
    virtual bool mountPoint(const std::string& point) = 0;  // of the system's own table
    // Gives where it is mounted, now or before; empty when it is not.
    virtual std::string mountLabel(const std::string& label) = 0;
};

// What an alias is resolved against.
struct AliasPlaces {
    std::string volumesFolder = "/Volumes";
    std::string mountTable = "/etc/fstab";
    std::vector<std::string> mediaFolders;  // in which the desktop mounts disks by their labels
    std::function<std::vector<Mount>()> mounts;
    std::shared_ptr<Mounter> mounter;
    std::chrono::milliseconds patience{2000};
    std::chrono::milliseconds mountPatience{30000};

    static AliasPlaces ofProcess();
};

// A volume that would have to be mounted for a path to be reached.
struct UnmountedVolume {
    enum class Source { MountTable, Label } source;
    std::string point;
};

// By the system's table of what may be mounted. The path may exist all the same, in the empty
// folder that the volume would cover.
std::optional<UnmountedVolume> unmountedByTable(const std::string& path,
                                                const std::string& mountTable,
                                                const std::vector<Mount>& mounts);

// By where the desktop mounts disks, and the volumes folder. For paths that do not exist.
std::optional<UnmountedVolume> unmountedByLabel(const std::string& path, const AliasPlaces& places);

}  // namespace coreservices
