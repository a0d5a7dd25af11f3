// SPDX-License-Identifier: MIT
#pragma once

#include "Display.h"
#include "XProperties.h"

#include <xcb/randr.h>

namespace displays {

// The displays that form the X screen as XRandR tells them: main one first, frames from the upper
// left corner of the X screen, without working areas, depth and scale. Those that show the same
// part count as one. Empty when nothing is switched on.
Displays readMonitors(xcb_connection_t* connection, xcb_window_t root);

}  // namespace displays
