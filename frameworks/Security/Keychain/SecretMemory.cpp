// SPDX-License-Identifier: MIT
#include "Security/Keychain/SecretMemory.h"

#include <array>
#include <atomic>
#include <new>
#include <sodium.h>

namespace security {

namespace {

constexpr std::size_t kBlockSize = 16384;

struct Block {
    std::atomic<bool> isUsed = false;
    // Made by the first user.
    std::atomic<std::uint8_t*> data = nullptr;
};

// What a call has at once, twice.
std::array<Block, 6> gBlocks;

void startSodium() {
    static const int started = sodium_init();
    if (started < 0)
        throw std::bad_alloc();
}

std::uint8_t* newPages(std::size_t size) {
    startSodium();
    auto* const data = static_cast<std::uint8_t*>(sodium_malloc(size));
    if (data == nullptr)
        throw std::bad_alloc();
    return data;
}

std::uint8_t* take(Block& block) {
    if (block.data == nullptr) {
        try {
            block.data = newPages(kBlockSize);
        } catch (...) {
            block.isUsed = false;
            throw;
        }
    }
    return block.data;
}

}  // namespace

std::uint8_t* SecretMemory::allocate(std::size_t size) {
    if (size <= kBlockSize) {
        for (Block& block : gBlocks) {
            if (!block.isUsed.exchange(true))
                return take(block);
        }
    }
    return newPages(size);
}

void SecretMemory::free(void* data) {
    if (data == nullptr)
        return;
    for (Block& block : gBlocks) {
        if (block.data == data) {
            sodium_memzero(data, kBlockSize);
            block.isUsed = false;
            return;
        }
    }
    sodium_free(data);
}

}  // namespace security
