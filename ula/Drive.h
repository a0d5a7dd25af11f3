// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"
#include "ula/FileProperties.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tav::ula {

/// What kind of volume it is. The values are fixed.
enum DriveType : std::int32_t {
    /// A medium of no more particular kind: a memory card, a USB disk.
    Removable = 2,
    /// Not removable: internal disks, the start-up disk among them.
    Fixed = 3,
    Network = 4,
    /// A CD or DVD.
    Optical = 5,
    /// A disk image or another virtual device.
    Virtual = 6,
};

/// Units: bytes.
struct DriveSpace {
    std::uint64_t total = 0;
    std::uint64_t free = 0;  ///< as far as this user may fill it
};

/// Empty texts are not known.
struct DriveDetails {
    std::string fileSystemType;  ///< "ext4"
    std::string label;
    std::string uuid;
    std::string deviceNode;  ///< "/dev/sdb1"; empty for what is no disk
    std::string location;    ///< the folder on which it is mounted, by the system's own name
};

/// The record of one mounted volume. Texts are UTF-8.
/// Thread: a value; any, one at a time. The static functions: any.
class ULA_API Drive {
public:
    Drive(const DriveType& type, const FileProperties& properties, const std::string& mountPoint);

    /// The mounted volumes; the start-up disk as "/Volumes/" and its name, others only when they
    /// have such a path. In the order of mounting.
    static std::vector<Drive> drives();
    static std::vector<Drive> drivesImplMac();
    /// Always empty here.
    static std::vector<Drive> drivesImplWin();
    /// The record of the volume mounted at the path.
    /// Fails: what cannot be found out has no title, or is `Fixed`; nothing is logged.
    static Drive fromDrivePath(std::string path);
    /// Whether an equal one is among them.
    static bool contains(const std::vector<Drive>& drives, const Drive& drive);
    /// A line on standard output for each of `drives`.
    static void dump();

    /// Whether type, properties and mount point are equal.
    bool operator==(const Drive& other) const;

    /// Where the system says that it is mounted; empty when that is not known.
    const std::string& volumeURL() const { return _volumeURL; }
    DriveType type() const { return _type; }
    /// Its name, target path and full path are the path of the volume. With its icon.
    const FileProperties& properties() const { return _properties; }
    /// The folder that holds the volumes: "/Volumes".
    const std::string& mountPoint() const { return _mountPoint; }

    /// How large it is now. Waits for the volume, though not long for one that does not answer.
    /// Fails: nothing, not logged.
    std::optional<DriveSpace> space() const;
    /// What else is known of the volume now.
    DriveDetails details() const;

private:
    std::string _volumeURL;
    DriveType _type;
    FileProperties _properties;
    std::string _mountPoint;
};

}  // namespace tav::ula
