// SPDX-License-Identifier: MIT
// The real sources behind a Machine.
#pragma once

#include "DiskArbitration/Machine.h"

#include <chrono>
#include <string>

namespace diskarbitration {

// What udev's daemon has noted; empty where none runs.
Properties udevProperties(const std::string& number);

// Asks udisks, only where it runs already: it is never started for this.
// Fails: empty when it does not answer in time.
VolumeLabel askUDisks(const std::string& name, std::chrono::milliseconds patience);

// Reads the beginning of the device, which takes rights to it.
// Fails: empty when it does not answer in time.
VolumeLabel readFromDisk(const std::string& node, std::chrono::milliseconds patience);

}  // namespace diskarbitration
