// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace foundation {

struct FileSystemSpace {
    uint64_t size = 0;  // bytes
    uint64_t free = 0;  // bytes, as far as this user may fill them
    uint64_t nodes = 0;
    uint64_t freeNodes = 0;
    uint64_t number = 0;  // as stat gives it for its items
};

// Asks the file system at a mount point. Another thread waits for the answer; as long as it waits
// in vain, nobody asks that file system again.
// Fails: nothing when there is no answer in time.
std::optional<FileSystemSpace> askForSpace(const std::string& point,
                                           std::chrono::milliseconds patience);

}  // namespace foundation
