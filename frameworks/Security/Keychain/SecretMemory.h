// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

namespace security {

// Memory between pages that may not be touched, kept out of the swap and of core files, wiped when
// it is freed. Making such pages takes many system calls: a few blocks, large enough for most
// keychains, are kept for the next call. Where the user may lock no more memory it may reach the
// swap.
//
// Thread: any. No lock, which a process that was forked might find held.
class SecretMemory {
public:
    // Owner: the caller, who ends with `free`. Fails: std::bad_alloc.
    static std::uint8_t* allocate(std::size_t size);
    // Null is nothing.
    static void free(void* data);
};

}  // namespace security
