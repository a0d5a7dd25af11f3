// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct statx;

namespace coreservices {

// One mounted file system as the kernel lists it for this process.
struct Mount {
    uint64_t id = 0;    // as statx gives it for what lies on the mount
    std::string root;   // which folder of the file system is mounted, "/" for all of it
    std::string point;  // where
    std::string type;   // "ext4", "fuse.sshfs"
    std::string
        source;  // "/dev/sda1", "host:/export", anything else for file systems of the kernel
    uint64_t parent = 0;  // the mount on which it was mounted
    std::string device =
        {};  // "8:1"; file systems without a disk have numbers of their own, "0:52"
    bool isReadOnly = false;  // the file system, or this mount of it
};

// Whether what statx told is the root of a mount.
bool isMountRoot(const struct ::statx& item);

// Parses the text of a mountinfo file. Names come with the kernel's octal escapes undone. A line
// that is no mountinfo line is left out. Later mounts on one point hide earlier ones; all are
// listed, in the kernel's order.
__attribute__((visibility("default"))) std::vector<Mount> parseMountInfo(std::string_view text);

// The text for the calling process. Fails: an empty text, not logged.
__attribute__((visibility("default"))) std::string readMountInfo();

}  // namespace coreservices
