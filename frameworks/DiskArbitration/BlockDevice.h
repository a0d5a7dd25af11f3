// SPDX-License-Identifier: MIT
#pragma once

#include "DiskArbitration/Machine.h"

#include <cstdint>
#include <optional>
#include <string>

namespace diskarbitration {

// A block device as sysfs describes it; of a partition the facts of its disk, too.
struct BlockDevice {
    std::string name;      // "sdb1"
    std::string number;    // "8:17"
    std::string path;      // in sysfs, without links
    std::string protocol;  // the platform's word: "USB"; empty when unknown
    std::string vendor;
    std::string model;
    std::string revision;
    std::string image;      // the file behind a loop device
    std::string mediaType;  // of optical discs: "CD-ROM"
    uint64_t size = 0;      // in bytes
    bool isWhole = true;
    bool isReadOnly = false;
    bool hasRemovableMedium = false;
    bool isRemovable = false;  // the medium, or the whole device
    bool isInternal = true;
};

// Finds a device by its number, "8:17", or by the name of a node, "sdb1", "/dev/mapper/backup".
// `kind` is the file system on it, where that is known.
// Fails: nothing when sysfs does not know it.
std::optional<BlockDevice> findBlockDevice(const std::string& numberOrName, const std::string& kind,
                                           const Machine& machine);

}  // namespace diskarbitration
