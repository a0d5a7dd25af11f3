// SPDX-License-Identifier: MIT
// Where paths lie, by the table of mounts and by links on disks of this computer: nothing is asked
// of a file system that may not answer.
#pragma once

#include "CoreServices/MountInfo.h"

#include <memory>
#include <string>
#include <vector>

namespace coreservices {

using MountList = std::shared_ptr<const std::vector<Mount>>;

// The mounts that paths lead to. Those that another mount hides, at the same point or further up,
// are left out.
__attribute__((visibility("default"))) std::vector<Mount>
reachableMounts(const std::vector<Mount>& mounts);

// The reachable mounts of this process. Read anew after every change of the table, and when it was
// read a while ago: a file system that turns read-only on an error changes nothing there.
// Thread: any.
__attribute__((visibility("default"))) MountList currentMounts();

// As long as it lives, currentMounts() answers the thread that made it with this table: what has
// just changed is told, and asked about, by one state of things.
class __attribute__((visibility("default"))) MountView {
public:
    explicit MountView(MountList mounts);
    ~MountView();
    MountView(const MountView&) = delete;
    MountView& operator=(const MountView&) = delete;

private:
    MountList _outer;
};

// Whether the kernel answers for this file system on its own: no server, no other process and no
// network is asked. Unknown types do not.
__attribute__((visibility("default"))) bool answersByItself(const Mount& mount);

// What an absolute path lies on, by its text alone: the last one of the longest mount points above
// it. Owner: the list. Null when none is.
__attribute__((visibility("default"))) const Mount* mountCovering(const std::string& path,
                                                                  const std::vector<Mount>& mounts);

// The absolute path without "." and "..", and without the links on the way, as far as those lie on
// file systems that answer by themselves; what lies on others is taken as it stands. Nothing needs
// to exist. Fails: empty for a path that is not absolute, and for links that lead round in circles.
__attribute__((visibility("default"))) std::string
pathWithoutLinks(const std::string& path, const std::vector<Mount>& mounts);

// What a path lies on, whatever links lead there. Owner: the list.
// Fails: null for a path that is not absolute, and for one that does not exist as far as that can
// be told without waiting.
__attribute__((visibility("default"))) const Mount* mountOf(const std::string& path,
                                                            const std::vector<Mount>& mounts);

}  // namespace coreservices
