// SPDX-License-Identifier: MIT
#pragma once

#include "Display.h"

#include <array>

namespace displays {

// What panels reserve at one edge of the whole desktop: how deep, and from where to where along it.
struct Strut {
    int depth = 0;
    int begin = 0;
    int end = 0;  // the last pixel
};

// In the order in which windows tell them: left, right, top, bottom.
using Struts = std::array<Strut, 4>;

// What is known of the desktop that is shown. Areas count from the desktop's upper left corner.
struct Desktop {
    int width = 0;
    int height = 0;
    // One for each display or so, where the desktop says it exactly.
    std::vector<Area> areas;
    // One for the desktop as a whole; empty where nobody manages windows.
    Area area;
    std::vector<Struts> panels;
};

// The part of each frame that panels leave free, in the order of the frames.
std::vector<Area> workingAreas(const std::vector<Area>& frames, const Desktop& desktop);

}  // namespace displays
