// SPDX-License-Identifier: MIT
#include "XMonitors.h"

#include "XReply.h"

#include <algorithm>

namespace displays {

namespace {

using Resources = XReply<xcb_randr_get_screen_resources_current_reply_t>;

// Those that the server knows; nothing is probed for, which could take seconds.
Resources readResources(xcb_connection_t* connection, xcb_window_t root) {
    const auto cookie = xcb_randr_get_screen_resources_current(connection, root);
    return adopt(xcb_randr_get_screen_resources_current_reply(connection, cookie, nullptr));
}

double rateOf(const xcb_randr_mode_info_t& mode) {
    double lines = mode.vtotal;
    if ((mode.mode_flags & XCB_RANDR_MODE_FLAG_DOUBLE_SCAN) != 0)
        lines *= 2;
    if ((mode.mode_flags & XCB_RANDR_MODE_FLAG_INTERLACE) != 0)
        lines /= 2;
    // A server without hardware has made its modes up, and their clocks are zero.
    const double pixels = mode.htotal * lines;
    return pixels > 0 ? mode.dot_clock / pixels : 0;
}

xcb_randr_mode_t modeOf(xcb_connection_t* connection, xcb_randr_output_t output) {
    const auto outputCookie = xcb_randr_get_output_info(connection, output, XCB_CURRENT_TIME);
    const auto info = adopt(xcb_randr_get_output_info_reply(connection, outputCookie, nullptr));
    if (!info || info->crtc == XCB_NONE)
        return XCB_NONE;
    const auto crtcCookie = xcb_randr_get_crtc_info(connection, info->crtc, XCB_CURRENT_TIME);
    const auto crtc = adopt(xcb_randr_get_crtc_info_reply(connection, crtcCookie, nullptr));
    return crtc ? crtc->mode : xcb_randr_mode_t{XCB_NONE};
}

double refreshRate(xcb_connection_t* connection, xcb_randr_output_t output,
                   const Resources& resources) {
    if (!resources)
        return 0;
    const xcb_randr_mode_t current = modeOf(connection, output);
    auto modes = xcb_randr_get_screen_resources_current_modes_iterator(resources.get());
    for (; modes.rem > 0; xcb_randr_mode_info_next(&modes))
        if (modes.data->id == current)
            return rateOf(*modes.data);
    return 0;
}

Display displayOf(xcb_connection_t* connection, const xcb_randr_monitor_info_t& monitor,
                  const Resources& resources) {
    Display display;
    display.name = XProperties(connection).atomName(monitor.name);
    display.frame = {monitor.x, monitor.y, monitor.width, monitor.height};
    // One that a user has drawn may have no output; its name is a number, too.
    display.id = monitor.name;
    if (xcb_randr_monitor_info_outputs_length(&monitor) > 0) {
        display.id = *xcb_randr_monitor_info_outputs(&monitor);
        display.refreshRate = refreshRate(connection, display.id, resources);
    }
    return display;
}

void add(Displays& displays, Display display, bool isPrimary) {
    const auto same = std::find_if(displays.begin(), displays.end(), [&](const Display& other) {
        return other.frame == display.frame;
    });
    if (same != displays.end()) {
        if (!isPrimary)
            return;
        displays.erase(same);
    }
    displays.insert(isPrimary ? displays.begin() : displays.end(), std::move(display));
}

}  // namespace

Displays readMonitors(xcb_connection_t* connection, xcb_window_t root) {
    const auto cookie = xcb_randr_get_monitors(connection, root, true);
    const Resources resources = readResources(connection, root);
    const auto reply = adopt(xcb_randr_get_monitors_reply(connection, cookie, nullptr));
    Displays displays;
    if (!reply)
        return displays;
    auto monitors = xcb_randr_get_monitors_monitors_iterator(reply.get());
    for (; monitors.rem > 0; xcb_randr_monitor_info_next(&monitors)) {
        Display display = displayOf(connection, *monitors.data, resources);
        if (!display.frame.isEmpty())
            add(displays, std::move(display), monitors.data->primary != 0);
    }
    return displays;
}

}  // namespace displays
