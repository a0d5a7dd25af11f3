// SPDX-License-Identifier: MIT
#pragma once

#include "DiskArbitration/Description.h"

#include "tests/support/TemporaryFolder.h"

#include <map>
#include <string>

namespace disktest {

// A machine described as data: a folder in the form of sysfs, one in that of /dev, and texts.
class FakeMachine {
public:
    FakeMachine();

    // A whole disk: where below sysfs's "devices" it hangs, and its number. The name is the last
    // component.
    void addDisk(const std::string& place, const std::string& number);
    void addPartition(const std::string& place, const std::string& number);
    // A file below sysfs's "devices", with the folders above it.
    void setAttribute(const std::string& path, const std::string& value);
    // A mapped device or an array on others, by their names.
    void putOn(const std::string& place, const std::string& slave);
    // "mapper/backup" as a link to "dm-0".
    void linkNode(const std::string& link, const std::string& name);

    // The table of mounts, in the kernel's form.
    std::string mounts = "27 1 254:0 / / rw - ext4 /dev/vda rw\n";
    // What udev has noted, by number.
    std::map<std::string, diskarbitration::Properties> udev;
    // By name.
    std::map<std::string, diskarbitration::VolumeLabel> udisks;
    std::map<std::string, diskarbitration::VolumeLabel> onDisk;

    diskarbitration::Machine machine() const;
    // Of the mount at the point.
    diskarbitration::Description at(const std::string& point) const;
    diskarbitration::VolumeLabel namesAt(const std::string& point) const;

private:
    std::string devices(const std::string& path) const;

    tav::test::TemporaryFolder _folder;
};

}  // namespace disktest
