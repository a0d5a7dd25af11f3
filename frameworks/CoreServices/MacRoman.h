// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace coreservices {

// The platform's encoding before Unicode, as UTF-8.
std::string fromMacRoman(std::string_view text);

// UTF-16 in big-endian bytes as UTF-8; halves of pairs become U+FFFD.
std::string fromBigEndianUtf16(std::string_view bytes);

}  // namespace coreservices
