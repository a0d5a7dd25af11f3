// SPDX-License-Identifier: MIT
#pragma once

#include "Security/Keychain/SecretMemory.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

namespace security {

// Owns bytes in `SecretMemory`.
class SecretBytes {
public:
    SecretBytes() = default;
    // Fails: std::bad_alloc.
    explicit SecretBytes(std::size_t size) : _data(SecretMemory::allocate(size)), _size(size) {}
    explicit SecretBytes(std::string_view bytes);
    SecretBytes(SecretBytes&& other) noexcept
        : _data(std::exchange(other._data, nullptr)), _size(std::exchange(other._size, 0)) {}
    SecretBytes& operator=(SecretBytes&& other) noexcept {
        std::swap(_data, other._data);
        std::swap(_size, other._size);
        return *this;
    }
    ~SecretBytes() { SecretMemory::free(_data); }

    std::uint8_t* data() { return _data; }
    const std::uint8_t* data() const { return _data; }
    std::size_t size() const { return _size; }
    std::string_view view() const { return {reinterpret_cast<const char*>(_data), _size}; }

    // Owner: the caller, who ends with `SecretMemory::free`.
    std::uint8_t* release() { return std::exchange(_data, nullptr); }

private:
    std::uint8_t* _data = nullptr;
    std::size_t _size = 0;
};

}  // namespace security
