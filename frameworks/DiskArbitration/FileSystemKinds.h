// SPDX-License-Identifier: MIT
#pragma once

#include "CoreServices/MountInfo.h"

namespace diskarbitration {

// What stands behind a file system that has no block device.
enum class Backing {
    Network,  // a server, or the host of a virtual machine
    Phone,    // a phone, player or camera on a cable
    Memory,   // memory, other folders, a file: whatever a process or the kernel makes up
    Pool,     // disks of which it keeps account itself
};

// Of an unknown type: Memory.
Backing backingOf(const coreservices::Mount& mount);

}  // namespace diskarbitration
