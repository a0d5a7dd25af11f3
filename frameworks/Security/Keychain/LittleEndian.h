// SPDX-License-Identifier: MIT
// Numbers of 32 bits in files, low byte first.
#pragma once

#include <cstddef>
#include <cstdint>

namespace security {

inline std::uint32_t readNumber(const std::uint8_t* bytes) {
    std::uint32_t number = 0;
    for (int i = 3; i >= 0; --i)
        number = number << 8 | bytes[i];
    return number;
}

inline void writeNumber(std::uint8_t* bytes, std::size_t number) {
    for (int i = 0; i < 4; ++i)
        bytes[i] = static_cast<std::uint8_t>(number >> (8 * i));
}

}  // namespace security
