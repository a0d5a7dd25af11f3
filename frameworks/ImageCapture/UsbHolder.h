// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace imagecapture {

// What keeps a camera on USB from being opened.
struct UsbObstacle {
    enum class Kind { None, Gone, Held, NotPermitted };

    Kind kind = Kind::None;
    std::string what = {};  // "it is no longer connected"
    std::string cure = {};  // what to do about it; empty where that is plain
};

// `place` is "001,005"; the folders are those of the system but in tests. Of other users' processes
// only the superuser learns. None when nothing stands in the way as far as can be told.
__attribute__((visibility("default"))) UsbObstacle
usbObstacle(const std::string& place, const std::string& processes, const std::string& devices);

// The same in the words that follow an error: "; "gvfsd-gphoto2" (process 4711) has it: …", or "".
std::string usbAdvice(const std::string& place, const std::string& processes,
                      const std::string& devices);

}  // namespace imagecapture
