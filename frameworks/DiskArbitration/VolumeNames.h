// SPDX-License-Identifier: MIT
#pragma once

#include "DiskArbitration/BlockDevice.h"
#include "DiskArbitration/Machine.h"

namespace diskarbitration {

// Label and UUID of the file system on a device, from the first that knows any: udev, the links it
// has made, udisks, the disk itself. Where udev runs nothing else is asked.
VolumeLabel labelOf(const BlockDevice& device, const Machine& machine);

}  // namespace diskarbitration
