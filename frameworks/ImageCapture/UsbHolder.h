// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace imagecapture {

// What to do when a camera on USB cannot be opened: "; "gvfsd-gphoto2" (process 4711) has it: …".
// `place` is "001,005"; the folders are those of the system but in tests. Of other users' processes
// only the superuser learns. Empty when nothing stands in the way as far as can be told.
std::string usbAdvice(const std::string& place, const std::string& processes,
                      const std::string& devices);

}  // namespace imagecapture
