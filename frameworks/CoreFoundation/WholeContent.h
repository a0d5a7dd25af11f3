// SPDX-License-Identifier: MIT
// Reading and writing that neither a signal nor a short count ends early.
#pragma once

#include "CoreFoundation/Descriptor.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace cf {

// From where the descriptor stands to the end, `most` bytes at the most; what came before an error.
inline std::string readUpTo(int descriptor, std::size_t most) {
    std::string bytes;
    char part[16384];
    while (bytes.size() < most) {
        const ssize_t count = retryInterrupted(
            [&] { return ::read(descriptor, part, std::min(sizeof part, most - bytes.size())); });
        if (count <= 0)
            break;
        bytes.append(part, static_cast<std::size_t>(count));
    }
    return bytes;
}

// Fails: false, with errno; some of it may have been written.
inline bool writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count =
            retryInterrupted([&] { return ::write(descriptor, bytes.data(), bytes.size()); });
        if (count < 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

}  // namespace cf
