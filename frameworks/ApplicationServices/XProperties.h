// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>
#include <xcb/xcb.h>

namespace displays {

// Properties that window managers and desktops put on windows. An absent one is empty, and one that
// changes while it is read ends early.
class XProperties {
public:
    explicit XProperties(xcb_connection_t* connection);

    std::vector<std::uint32_t> numbers(xcb_window_t window, const std::string& name) const;
    std::string text(xcb_window_t window, xcb_atom_t name) const;
    xcb_atom_t atom(const std::string& name) const;
    std::string atomName(xcb_atom_t atom) const;

private:
    xcb_connection_t* _connection;
};

// "Xft.dpi" of the X resources by 96, the resolution that is drawn unscaled; 1 where there is none.
double scaleFrom(const std::string& resources);

}  // namespace displays
