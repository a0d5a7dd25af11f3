// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace appkit {

// Tells an item from another that takes its name later. It stays the same when the item is renamed
// and when its disk is mounted again; a file system that uses an inode's number again gives the new
// item another birth time.
struct ItemIdentity {
    uint64_t inode = 0;
    int64_t birthTimeNs = 0;  // since 1970; 0 where the file system keeps none

    bool operator==(const ItemIdentity&) const = default;
};

// Fails: false with errno.
bool readIdentity(int folder, const std::string& name, ItemIdentity* identity);

}  // namespace appkit
