// SPDX-License-Identifier: MIT
// What disks are described from. Tests describe whole machines with folders and texts of their own.
#pragma once

#include "CoreServices/MountLookup.h"

#include <functional>
#include <map>
#include <string>

namespace diskarbitration {

// "ID_FS_LABEL_ENC" and the like by their names.
using Properties = std::map<std::string, std::string>;

struct VolumeLabel {
    std::string label;
    std::string uuid;

    bool empty() const { return label.empty() && uuid.empty(); }
};

struct Machine {
    std::string sysfs;    // its root: "/sys"
    std::string devices;  // the folder of device nodes: "/dev"
    std::function<coreservices::MountList()> mounts;
    // What udev has noted of a block device "8:1"; empty where it has not.
    std::function<Properties(const std::string& number)> properties;
    // What udisks says of "sdb1", and what stands on the disk itself.
    std::function<VolumeLabel(const std::string& name)> askedLabel;
    std::function<VolumeLabel(const std::string& name)> readLabel;

    __attribute__((visibility("default"))) static const Machine& ofProcess();
};

}  // namespace diskarbitration
