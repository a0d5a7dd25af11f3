// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace appkit {

// Red, green, blue and opacity, a byte each; the colours multiplied by the opacity, as the platform
// keeps them. Rows from the top, without gaps.
struct IconPixels {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> bytes;
};

// Draws an image file so that it just fits into a square.
// Fails: nothing for a file that is no image that the system can read; not logged.
std::optional<IconPixels> drawIcon(const std::string& file, int pixels);

}  // namespace appkit
