// SPDX-License-Identifier: MIT
#pragma once

#include <climits>
#include <string>
#include <unistd.h>

namespace cf {

// The system's own name of what is open, without links: a path, behind which " (deleted)" may
// stand, or "pipe:[1234]" and the like. Fails: empty.
inline std::string pathOfDescriptor(int descriptor) {
    char path[PATH_MAX];
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const ssize_t length = readlink(link.c_str(), path, sizeof path);
    const bool isWhole = length > 0 && static_cast<std::size_t>(length) < sizeof path;
    return isWhole ? std::string(path, static_cast<std::size_t>(length)) : std::string();
}

}  // namespace cf
