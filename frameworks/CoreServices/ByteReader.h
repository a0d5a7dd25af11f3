// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace coreservices {

enum class ByteOrder { Big, Little };

// Bytes of a file that nobody vouches for: whatever lies outside is nothing.
class ByteReader {
public:
    ByteReader(std::string_view bytes, ByteOrder order) : _bytes(bytes), _order(order) {}

    bool has(size_t offset, size_t length) const {
        return offset <= _bytes.size() && length <= _bytes.size() - offset;
    }

    // Units: `size` is 1 to 8 bytes.
    std::optional<uint64_t> number(size_t offset, size_t size) const {
        if (!has(offset, size))
            return std::nullopt;
        uint64_t value = 0;
        for (size_t i = 0; i < size; ++i) {
            size_t at = _order == ByteOrder::Big ? offset + i : offset + size - 1 - i;
            value = value << 8 | static_cast<unsigned char>(_bytes[at]);
        }
        return value;
    }

    std::optional<std::string_view> slice(size_t offset, size_t length) const {
        if (!has(offset, length))
            return std::nullopt;
        return _bytes.substr(offset, length);
    }

private:
    std::string_view _bytes;
    ByteOrder _order;
};

}  // namespace coreservices
