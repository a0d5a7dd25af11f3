// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace imagecapture {

struct CopyResult {
    uint64_t copied = 0;
    int readError = 0;   // errno
    int writeError = 0;  // errno
};

// Copies `size` bytes, fewer when the file ends before, between two open files.
CopyResult copyBytes(int source, int target, uint64_t size);

}  // namespace imagecapture
