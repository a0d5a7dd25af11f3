// SPDX-License-Identifier: MIT
#include "DiskArbitration/Description.h"

#include "DiskArbitration/FileSystemKinds.h"
#include "DiskArbitration/VolumeNames.h"

#include <algorithm>

namespace diskarbitration {

namespace {

using coreservices::Mount;

// Some file systems have numbers of their own instead of the disk's: their source names it.
std::optional<BlockDevice> deviceOf(const Mount& mount, const Machine& machine) {
    if (mount.device.substr(0, 2) != "0:")
        if (auto device = findBlockDevice(mount.device, mount.type, machine))
            return device;
    if (mount.source.substr(0, 5) != "/dev/")
        return std::nullopt;
    return findBlockDevice(mount.source, mount.type, machine);
}

const Mount* startupMount(const std::vector<Mount>& mounts) {
    auto root = std::find_if(mounts.begin(), mounts.end(),
                             [](const Mount& mount) { return mount.point == "/"; });
    return root == mounts.end() ? nullptr : &*root;
}

// Also where a folder of it is mounted once more.
bool isStartupDisk(const Mount& mount, const std::vector<Mount>& mounts) {
    const Mount* startup = startupMount(mounts);
    return mount.point == "/" || (startup != nullptr && startup->device == mount.device);
}

void describeWithoutDevice(Description& description) {
    switch (backingOf(*description.mount)) {
    case Backing::Network:
        description.isNetwork = true;
        break;
    case Backing::Phone:
        description.protocol = "USB";
        break;
    case Backing::Memory:
        description.protocol = "Virtual Interface";
        break;
    case Backing::Pool:
        return;
    }
    description.isRemovable = true;
}

bool isOn(const Mount& mount, const BlockDevice& device, const Machine& machine) {
    if (mount.device == device.number || mount.source == "/dev/" + device.name)
        return true;
    if (mount.source.substr(0, 5) != "/dev/")
        return false;
    auto source = findBlockDevice(mount.source, mount.type, machine);
    return source && source->name == device.name;
}

// By a name that `mountedFromName` has made.
const Mount* mountFrom(const std::string& name, const std::vector<Mount>& mounts) {
    auto first = std::find_if(mounts.begin(), mounts.end(),
                              [&](const Mount& mount) { return mount.source == name; });
    if (first != mounts.end())
        return &*first;
    size_t hash = std::min(name.rfind('#'), name.size());
    std::string source = name.substr(0, hash), number = name.substr(hash);
    auto numbered = std::find_if(mounts.begin(), mounts.end(), [&](const Mount& mount) {
        return mount.source == source && "#" + std::to_string(mount.id) == number;
    });
    return numbered == mounts.end() ? nullptr : &*numbered;
}

}  // namespace

Description describeMount(const Mount& mount, const Machine& machine) {
    Description description;
    description.mount = mount;
    description.device = deviceOf(mount, machine);
    if (description.device) {
        description.protocol = description.device->protocol;
        description.isRemovable = description.device->isRemovable;
    } else {
        describeWithoutDevice(description);
    }
    if (isStartupDisk(mount, *machine.mounts()))
        description.isRemovable = false;
    return description;
}

std::optional<Description> describeName(const std::string& name, const Machine& machine) {
    coreservices::MountList mounts = machine.mounts();
    if (const Mount* mount = mountFrom(name, *mounts))
        return describeMount(*mount, machine);
    auto device = findBlockDevice(name, {}, machine);
    if (!device)
        return std::nullopt;
    for (const Mount& mount : *mounts)
        if (isOn(mount, *device, machine))
            return describeMount(mount, machine);
    Description description;
    description.protocol = device->protocol;
    description.isRemovable = device->isRemovable;
    description.device = std::move(device);
    return description;
}

VolumeLabel namesOf(const Description& description, const Machine& machine) {
    VolumeLabel names;
    if (description.device)
        names = labelOf(*description.device, machine);
    if (names.label.empty() && description.mount) {
        const std::string& point = description.mount->point;
        names.label = point.substr(point.rfind('/') + 1);
    }
    return names;
}

std::string mountedFromName(const Mount& mount, const std::vector<Mount>& mounts) {
    auto first = std::find_if(mounts.begin(), mounts.end(),
                              [&](const Mount& other) { return other.source == mount.source; });
    bool isFirst = first == mounts.end() || first->id == mount.id;
    return isFirst ? mount.source : mount.source + "#" + std::to_string(mount.id);
}

}  // namespace diskarbitration
