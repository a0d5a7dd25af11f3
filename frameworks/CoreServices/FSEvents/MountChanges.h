// SPDX-License-Identifier: MIT
#pragma once

#include "CoreFoundation/Descriptor.h"
#include "CoreServices/MountInfo.h"

#include <string>
#include <vector>

namespace fsevents {

struct MountChange {
    std::string point;
    bool isMounted;
};

// What is mounted and unmounted, as the kernel tells it to this process.
class MountChanges {
public:
    MountChanges();

    // Polled for POLLPRI; -1 where nothing is told. The kernel tells each change to one poll only:
    // whoever polls it passes on what came back.
    int descriptor() const { return _descriptor.get(); }
    void note(short polled) { _isChanged = _isChanged || polled != 0; }
    // Since the call before, unmounted ones first.
    std::vector<MountChange> take();

private:
    cf::Descriptor _descriptor;
    bool _isChanged = false;
    std::vector<coreservices::Mount> _known;
};

// Mount points whose folders cannot be followed: the kernel's own file systems, which tell nothing,
// and those that may never answer.
std::vector<std::string> mountsNotToFollow();

}  // namespace fsevents
