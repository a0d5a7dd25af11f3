// SPDX-License-Identifier: MIT
#include "MountChanges.h"

#include "CoreServices/MountLookup.h"
#include "CoreServices/StallingMount.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <poll.h>
#include <string_view>
#include <utility>

namespace fsevents {

using coreservices::Mount;

namespace {

constexpr std::array<std::string_view, 13> kKernelFileSystems{
    "autofs", "binfmt_misc", "bpf",     "cgroup", "cgroup2", "configfs", "debugfs",
    "devpts", "efivarfs",    "fusectl", "proc",   "sysfs",   "tracefs",
};

bool contains(const std::vector<Mount>& mounts, const Mount& mount) {
    return std::any_of(mounts.begin(), mounts.end(), [&](const Mount& other) {
        return other.id == mount.id && other.point == mount.point;
    });
}

void addMissing(const std::vector<Mount>& from, const std::vector<Mount>& in, bool isMounted,
                std::vector<MountChange>& changes) {
    for (const Mount& mount : from)
        if (!contains(in, mount))
            changes.push_back({mount.point, isMounted});
}

}  // namespace

MountChanges::MountChanges()
    : _descriptor(open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC)),
      _known(coreservices::parseMountInfo(coreservices::readMountInfo())) {
}

std::vector<MountChange> MountChanges::take() {
    pollfd table{_descriptor.get(), POLLPRI, 0};
    if (_descriptor && poll(&table, 1, 0) > 0)
        note(table.revents);
    if (!std::exchange(_isChanged, false))
        return {};
    std::vector<Mount> now = coreservices::parseMountInfo(coreservices::readMountInfo());
    std::vector<MountChange> changes;
    addMissing(_known, now, false, changes);
    addMissing(now, _known, true, changes);
    _known = std::move(now);
    return changes;
}

std::vector<std::string> mountsNotToFollow() {
    std::vector<std::string> points;
    const coreservices::MountList mounts = coreservices::currentMounts();
    for (const Mount& mount : *mounts) {
        const bool isKernels = std::find(kKernelFileSystems.begin(), kKernelFileSystems.end(),
                                         mount.type) != kKernelFileSystems.end();
        if (isKernels || coreservices::mayStall(mount))
            points.push_back(mount.point);
    }
    return points;
}

}  // namespace fsevents
