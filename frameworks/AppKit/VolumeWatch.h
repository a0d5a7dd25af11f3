// SPDX-License-Identifier: MIT
#pragma once

#include "CoreFoundation/Descriptor.h"

#include <string>

namespace appkit {

// Tells through a descriptor that the table of mounts, or the folder with the names of volumes, may
// have changed. Waits for nothing and asks no file system.
// Thread: one at a time. Not for a forked child: the descriptor would be its parent's.
class VolumeWatch {
public:
    explicit VolumeWatch(std::string folder);

    // Polls readable from a change on until take(). Owner: this object. Fails: -1, errno is set.
    int descriptor() const { return _changes.get(); }

    // To be called before the volumes are looked at. A folder that was made, or mounted over, since
    // the last time is watched from here on.
    void take();

    // Makes the descriptor readable once more.
    void repeat();

private:
    void watchFolder();

    std::string _folder;
    cf::Descriptor _mounts;
    cf::Descriptor _names;  // invalid where there are too many of the kind: names are not watched
    cf::Descriptor _changes;
    int _watch = -1;
};

}  // namespace appkit
