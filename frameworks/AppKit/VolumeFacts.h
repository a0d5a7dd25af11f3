// SPDX-License-Identifier: MIT
// What the workspace tells of volumes, by the table of mounts and sysfs. No volume is asked.
#pragma once

#include "DiskArbitration/Description.h"

#include <optional>
#include <string>
#include <vector>

namespace appkit {

// "/" for the start-up disk; then the volumes in the order of mounting, by their entry in `folder`,
// "/Volumes/Stick", or where they are mounted when they have none there.
std::vector<std::string> volumePaths(const std::vector<coreservices::Mount>& mounts,
                                     const std::string& folder);

struct FileSystemInfo {
    bool isRemovable = false;
    bool isWritable = false;
    bool isUnmountable = false;
    std::string description;  // in English: "network volume"
    std::string type;         // "ext4"
};

// Of what the path lies on. Fails: nothing when it lies on nothing.
std::optional<FileSystemInfo> fileSystemInfo(const std::string& path,
                                             const diskarbitration::Machine& machine);

// The names that a desktop's theme may have for the icon of the volume at this path, the best one
// first. Empty when the path is no volume's.
std::vector<std::string> volumeIconNames(const std::string& path,
                                         const diskarbitration::Machine& machine,
                                         const std::string& folder);

}  // namespace appkit
