// SPDX-License-Identifier: MIT
#pragma once

#include "AppKit/VolumeFacts.h"

#include <optional>
#include <string>
#include <vector>

namespace appkit {

struct VolumeChange {
    enum class Kind { Mounted, Unmounted } kind;
    std::string path;
    // What is mounted as far as those know who have been told all changes up to this one. In the
    // order of mounting, without the start-up disk.
    std::vector<std::string> told;
};

// What the listeners know of the volumes. They are told of one change at a time, and whoever lists
// the volumes upon it must find that change and no other: listeners compare lists, and one that
// sees a volume come while it is told of another that goes would never report it.
class ToldVolumes {
public:
    // What the listeners know to begin with.
    void begin(std::vector<Volume> volumes) { _told = std::move(volumes); }

    // The next change to tell, given what is mounted now, and notes it as told. Volumes that have
    // gone come first: another may be mounted in their place.
    std::optional<VolumeChange> next(const std::vector<Volume>& now);

private:
    std::vector<Volume> _told;
};

}  // namespace appkit
