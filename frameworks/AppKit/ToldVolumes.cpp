// SPDX-License-Identifier: MIT
#include "AppKit/ToldVolumes.h"

#include <algorithm>

namespace appkit {

namespace {

// Not by what may change while it is mounted, as whether it is read-only. The kernel gives numbers
// of mounts anew, so the number alone says little.
bool isSame(const Volume& one, const Volume& other) {
    if (one.serial != other.serial && one.serial != 0 && other.serial != 0)
        return false;
    return one.path == other.path && one.mount.id == other.mount.id &&
           one.mount.point == other.mount.point && one.mount.root == other.mount.root &&
           one.mount.device == other.mount.device && one.mount.type == other.mount.type &&
           one.mount.source == other.mount.source;
}

bool contains(const std::vector<Volume>& volumes, const Volume& volume) {
    return std::any_of(volumes.begin(), volumes.end(),
                       [&](const Volume& other) { return isSame(volume, other); });
}

auto firstMissing(const std::vector<Volume>& volumes, const std::vector<Volume>& others) {
    return std::find_if(volumes.begin(), volumes.end(),
                        [&](const Volume& volume) { return !contains(others, volume); });
}

}  // namespace

std::optional<VolumeChange> ToldVolumes::next(const std::vector<Volume>& now) {
    VolumeChange change{VolumeChange::Kind::Unmounted, {}, {}};
    auto gone = firstMissing(_told, now);
    auto added = firstMissing(now, _told);
    if (gone != _told.end()) {
        change.path = gone->path;
        _told.erase(gone);
    } else if (added != now.end()) {
        change.kind = VolumeChange::Kind::Mounted;
        change.path = added->path;
        _told.push_back(*added);
    } else {
        return std::nullopt;
    }
    for (const Volume& volume : now)
        if (contains(_told, volume))
            change.told.push_back(volume.path);
    return change;
}

}  // namespace appkit
