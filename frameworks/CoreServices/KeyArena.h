// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace coreservices {

// Memory for many keys, given back all at once. Eight bytes behind every key may be read.
class KeyArena {
public:
    // At least `room` bytes, valid until the next call; keep() makes the first of them stay.
    uint8_t* reserve(size_t room) {
        if (_left < room + kReadable) {
            _left = std::max(kChunk, room + kReadable);
            _chunks.emplace_back(new uint8_t[_left]);
            _at = _chunks.back().get();
        }
        return _at;
    }

    const uint8_t* keep(size_t length) {
        const uint8_t* key = _at;
        _at += length;
        _left -= length;
        return key;
    }

private:
    static constexpr size_t kChunk = 256 * 1024;
    static constexpr size_t kReadable = 8;

    std::vector<std::unique_ptr<uint8_t[]>> _chunks;
    uint8_t* _at = nullptr;
    size_t _left = 0;
};

}  // namespace coreservices
