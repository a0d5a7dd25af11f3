// SPDX-License-Identifier: MIT
// What the workspace tells of volumes, by the table of mounts and sysfs. No volume is asked.
#pragma once

#include "DiskArbitration/Description.h"

#include <optional>
#include <string>
#include <vector>

namespace appkit {

struct Volume {
    std::string path;  // its entry in `folder`, "/Volumes/Stick", or where it is mounted
    coreservices::Mount mount;
    uint64_t serial = 0;  // see mountSerials(); 0 where it was not looked up
};

// All but the start-up disk, in the order of mounting.
std::vector<Volume> mountedVolumes(const std::vector<coreservices::Mount>& mounts,
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
