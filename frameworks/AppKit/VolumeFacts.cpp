// SPDX-License-Identifier: MIT
#include "AppKit/VolumeFacts.h"

#include "CoreServices/Volumes.h"

#include <algorithm>
#include <map>

namespace appkit {

using coreservices::Mount;
using coreservices::MountList;
using coreservices::VolumeEntry;
using coreservices::VolumeState;
using diskarbitration::Description;
using diskarbitration::Machine;

namespace {

const char* describe(const Description& description) {
    if (description.mount->point == "/")
        return "start-up disk";
    if (description.isNetwork)
        return "network volume";
    if (description.protocol == "Virtual Interface")
        return "disk image";
    if (description.device && !description.device->mediaType.empty())
        return "optical disc";
    return description.isRemovable ? "removable disk" : "hard disk";
}

std::vector<std::string> iconNames(const Description& description) {
    if (description.mount->point == "/")
        return {"drive-harddisk-system", "drive-harddisk"};
    if (description.isNetwork)
        return {"folder-remote", "network-server"};
    if (description.protocol == "Virtual Interface")
        return {"media-disk-image", "drive-removable-media", "drive-harddisk"};
    std::string media = description.device ? description.device->mediaType : "";
    if (!media.empty())
        return {media == "CD-ROM" ? "media-optical-cd" : "media-optical-dvd", "media-optical",
                "drive-optical"};
    if (description.protocol == "Secure Digital")
        return {"media-flash-sd-mmc", "media-flash", "drive-removable-media"};
    if (description.device && description.device->hasRemovableMedium)
        return {"drive-removable-media-usb", "drive-removable-media"};
    if (description.protocol == "USB")
        return {"drive-harddisk-usb", "drive-harddisk"};
    if (description.protocol == "FireWire")
        return {"drive-harddisk-ieee1394", "drive-harddisk"};
    return {"drive-harddisk"};
}

// Null when no volume is mounted right there.
const Mount* volumeAt(const std::string& path, const std::vector<Mount>& mounts,
                      const std::string& folder) {
    std::string real = pathWithoutLinks(path, mounts);
    const Mount* mount = mountCovering(real, mounts);
    if (mount == nullptr || mount->point != real)
        return nullptr;
    std::vector<std::string> points = volumePoints(mounts, folder);
    bool isVolume = real == "/" || std::find(points.begin(), points.end(), real) != points.end();
    return isVolume ? mount : nullptr;
}

}  // namespace

std::vector<Volume> mountedVolumes(const std::vector<Mount>& mounts, const std::string& folder) {
    std::map<std::string, std::string> entries;
    for (const VolumeEntry& entry : coreservices::Volumes(folder).list(mounts))
        if (entry.state == VolumeState::MountPoint || entry.state == VolumeState::Link)
            entries[entry.target] = folder + "/" + entry.name;
    std::vector<Volume> volumes;
    for (const std::string& point : volumePoints(mounts, folder)) {
        auto entry = entries.find(point);
        volumes.push_back(
            {entry == entries.end() ? point : entry->second, *mountCovering(point, mounts), 0});
    }
    return volumes;
}

std::optional<FileSystemInfo> fileSystemInfo(const std::string& path, const Machine& machine) {
    MountList mounts = machine.mounts();
    const Mount* mount = mountOf(path, *mounts);
    if (mount == nullptr)
        return std::nullopt;
    Description description = describeMount(*mount, machine);
    bool isProtected = description.device && description.device->isReadOnly;
    return FileSystemInfo{description.isRemovable, !mount->isReadOnly && !isProtected,
                          mount->point != "/", describe(description), mount->type};
}

std::vector<std::string> volumeIconNames(const std::string& path, const Machine& machine,
                                         const std::string& folder) {
    MountList mounts = machine.mounts();
    const Mount* mount = volumeAt(path, *mounts, folder);
    return mount == nullptr ? std::vector<std::string>()
                            : iconNames(describeMount(*mount, machine));
}

}  // namespace appkit
