// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string_view>

namespace security {

// A text as libsodium takes it.
inline const std::uint8_t* bytesOf(std::string_view text) {
    return reinterpret_cast<const std::uint8_t*>(text.data());
}

}  // namespace security
