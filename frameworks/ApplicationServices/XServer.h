// SPDX-License-Identifier: MIT
#pragma once

#include "Server.h"
#include "WorkingAreas.h"
#include "XProperties.h"

#include <xcb/xcb.h>

namespace displays {

// An X server. Through XCB and not Xlib, which ends the whole program when the server goes.
class XServer final : public Server {
public:
    // Takes the connection over. The screen is the one that the environment names.
    XServer(xcb_connection_t* connection, const xcb_screen_t& screen);
    XServer(const XServer&) = delete;
    XServer& operator=(const XServer&) = delete;
    ~XServer() override;

    int descriptor() const override;
    News takeNews() override;
    Displays read() override;
    void abandon() override;

private:
    void askForNews();
    News newsOf(const xcb_generic_event_t& event) const;
    bool isOfDesktop(xcb_atom_t property) const;
    Displays readFrames();
    Desktop readDesktop() const;
    std::vector<Struts> readPanels() const;

    xcb_connection_t* _connection;
    xcb_window_t _root;
    int _bitsPerPixel;
    XProperties _properties;
    std::vector<xcb_atom_t> _desktopProperties;
    // Of XRandR's first event; 0 where the server has no XRandR that tells of monitors.
    std::uint8_t _firstEvent = 0;
};

}  // namespace displays
