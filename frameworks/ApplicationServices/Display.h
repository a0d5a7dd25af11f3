// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace displays {

// In pixels, y growing downwards.
struct Area {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool isEmpty() const { return width <= 0 || height <= 0; }
    friend bool operator==(const Area&, const Area&) = default;
};

// One attached display, as the server describes it. Areas count from the upper left corner of the
// main display.
struct Display {
    std::uint32_t id = 0;
    std::string name;  // of the output: "HDMI-1"
    Area frame;
    Area workingArea;
    int bitsPerPixel = 0;
    double refreshRate = 0;  // in Hz; 0 where it is not known
    double scale = 1;        // what the user has chosen for texts and windows

    friend bool operator==(const Display&, const Display&) = default;
};

// The main display first.
using Displays = std::vector<Display>;

}  // namespace displays
