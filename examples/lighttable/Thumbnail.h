// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

namespace lighttable {

/// The pixels of a small picture: red, green and blue, a byte each.
struct Thumbnail {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;

    bool isEmpty() const { return pixels.empty(); }
};

}  // namespace lighttable
