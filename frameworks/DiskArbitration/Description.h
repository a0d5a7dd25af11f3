// SPDX-License-Identifier: MIT
// What the platform tells of a disk, as values; for the other frameworks, too.
#pragma once

#include "DiskArbitration/BlockDevice.h"

#include <optional>
#include <string>

#define DISK_EXPORT __attribute__((visibility("default")))

namespace diskarbitration {

struct Description {
    std::optional<coreservices::Mount> mount;  // where the volume is mounted
    std::optional<BlockDevice> device;
    std::string protocol;  // the device's, or that of a file system without one
    bool isNetwork = false;
    // What the user can take away: media, devices on cables, images, shares. Never the start-up
    // disk.
    bool isRemovable = false;
};

// Of a mounted file system. No file system is asked.
DISK_EXPORT Description describeMount(const coreservices::Mount& mount, const Machine& machine);

// Of a device, or of a mount by the name it is mounted from.
// Fails: nothing when there is neither.
DISK_EXPORT std::optional<Description> describeName(const std::string& name,
                                                    const Machine& machine);

// Label and UUID: apart, because a disk may have to be read for them. Of a volume without a label
// the name of the folder on which it is mounted.
DISK_EXPORT VolumeLabel namesOf(const Description& description, const Machine& machine);

// The name from which `statfs` says that a file system is mounted: its source. Of several with one
// source, as memory disks are, all but the first have their number behind it: "tmpfs#52".
DISK_EXPORT std::string mountedFromName(const coreservices::Mount& mount,
                                        const std::vector<coreservices::Mount>& mounts);

}  // namespace diskarbitration
