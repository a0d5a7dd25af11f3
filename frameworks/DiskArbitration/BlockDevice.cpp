// SPDX-License-Identifier: MIT
#include "DiskArbitration/BlockDevice.h"

#include "DiskArbitration/Protocol.h"
#include "DiskArbitration/Sysfs.h"

#include <string_view>

namespace diskarbitration {

namespace {

constexpr uint64_t kSectorSize = 512;  // whatever the disk's own is
constexpr uint64_t kLargestCd = 1'000'000'000;
constexpr uint64_t kLargestDvd = 9'000'000'000;
constexpr int kDeepestStack = 8;

bool isNumber(const std::string& text) {
    return text.find(':') != std::string::npos &&
           text.find_first_not_of("0123456789:") == std::string::npos;
}

std::string leafOf(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

std::string parentOf(const std::string& path) {
    return path.substr(0, path.rfind('/'));
}

// Names below the folder of nodes may be links to the nodes: "/dev/mapper/backup" to "../dm-0".
std::string pathOfName(const std::string& name, const Machine& machine) {
    bool isPath = name.substr(0, 5) == "/dev/";
    std::string below = isPath ? name.substr(5) : name;
    if (below.empty() || (!isPath && below.find('/') != std::string::npos))
        return {};
    std::string node = realPath(machine.devices + "/" + below);
    std::string leaf = leafOf(node.empty() ? below : node);
    return realPath(machine.sysfs + "/class/block/" + leaf);
}

// What a mapped device, a partition of an array and the like really lie on.
std::string bottomOf(std::string disk, const Machine& machine) {
    for (int depth = 0; depth < kDeepestStack; ++depth) {
        std::vector<std::string> below = namesIn(disk + "/slaves");
        if (below.empty())
            break;
        std::string path = realPath(machine.sysfs + "/class/block/" + below.front());
        if (path.empty())
            break;
        disk = exists(path + "/partition") ? parentOf(path) : path;
    }
    return disk;
}

// The pointed-to file, which may have been deleted since: the kernel then says so behind its name.
std::string imageBehind(const std::string& disk) {
    constexpr std::string_view gone = " (deleted)";
    std::string image = attribute(disk + "/loop/backing_file");
    if (image.ends_with(gone))
        image.resize(image.size() - gone.size());
    return image;
}

std::string mediaTypeBySize(uint64_t size, const std::string& kind) {
    if (size > kLargestDvd)
        return "BD-ROM";
    return size > kLargestCd || (kind == "udf" && size == 0) ? "DVD-ROM" : "CD-ROM";
}

// A disc that is mounted is read, whatever it was written with.
std::string mediaTypeOf(const BlockDevice& device, const std::string& kind,
                        const Properties& properties) {
    for (const auto& [name, value] : properties) {
        if (value != "1")
            continue;
        if (name.starts_with("ID_CDROM_MEDIA_BD"))
            return "BD-ROM";
        if (name.starts_with("ID_CDROM_MEDIA_DVD") || name.starts_with("ID_CDROM_MEDIA_HDDVD"))
            return "DVD-ROM";
        if (name.starts_with("ID_CDROM_MEDIA_CD"))
            return "CD-ROM";
    }
    return mediaTypeBySize(device.size, kind);
}

// Scsi device type 5 is the optical drive's.
bool isOptical(const std::string& disk) {
    return leafOf(disk).starts_with("sr") || attribute(disk + "/device/type") == "5";
}

// "Thunderbolt": a port outside, which the firmware marks.
bool isOnOutsidePort(const std::string& path, const std::string& sysfs) {
    for (std::string folder = path; folder.size() > sysfs.size(); folder = parentOf(folder))
        if (attribute(folder + "/removable") == "removable")
            return true;
    return false;
}

void readDevice(BlockDevice& device, const std::string& disk, const Machine& machine) {
    device.protocol = protocolOf(disk, machine.sysfs);
    device.vendor = attribute(disk + "/device/vendor");
    device.model = attribute(disk + "/device/model");
    if (device.model.empty())
        device.model = attribute(disk + "/device/name");
    device.revision = attribute(disk + "/device/rev");
    device.image = imageBehind(disk);
    // Of PCI devices, virtual disks among them, it is a number.
    if (device.vendor.starts_with("0x"))
        device.vendor.clear();
    device.hasRemovableMedium = flagAttribute(disk + "/removable") || isOptical(disk) ||
                                device.protocol == "Secure Digital" || !device.image.empty();
    bool goes = isHotPlugged(device.protocol) || isOnOutsidePort(disk, machine.sysfs);
    device.isRemovable = device.hasRemovableMedium || goes;
    device.isInternal = !goes || device.protocol == "Secure Digital";
}

}  // namespace

std::optional<BlockDevice> findBlockDevice(const std::string& numberOrName, const std::string& kind,
                                           const Machine& machine) {
    BlockDevice device;
    device.path = isNumber(numberOrName) ? realPath(machine.sysfs + "/dev/block/" + numberOrName)
                                         : pathOfName(numberOrName, machine);
    if (device.path.empty())
        return std::nullopt;
    device.name = leafOf(device.path);
    device.number = attribute(device.path + "/dev");
    device.size = numberAttribute(device.path + "/size") * kSectorSize;
    device.isReadOnly = flagAttribute(device.path + "/ro");
    device.isWhole = !exists(device.path + "/partition");
    std::string disk = device.isWhole ? device.path : parentOf(device.path);
    std::string bottom = bottomOf(disk, machine);
    readDevice(device, bottom, machine);
    if (isOptical(bottom))
        device.mediaType = mediaTypeOf(device, kind, machine.properties(device.number));
    return device;
}

}  // namespace diskarbitration
