// SPDX-License-Identifier: MIT
#include "XProperties.h"

#include "XReply.h"

#include <locale>
#include <sstream>

namespace displays {

namespace {

// In words of four bytes: more than any desktop has clients.
constexpr std::uint32_t kMostNumbers = 65536;
constexpr std::uint32_t kMostTextWords = 262144;
constexpr double kPlainResolution = 96;

}  // namespace

XProperties::XProperties(xcb_connection_t* connection) : _connection(connection) {
}

xcb_atom_t XProperties::atom(const std::string& name) const {
    const auto cookie =
        xcb_intern_atom(_connection, false, static_cast<std::uint16_t>(name.size()), name.c_str());
    const auto reply = adopt(xcb_intern_atom_reply(_connection, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

std::string XProperties::atomName(xcb_atom_t atom) const {
    const auto cookie = xcb_get_atom_name(_connection, atom);
    const auto reply = adopt(xcb_get_atom_name_reply(_connection, cookie, nullptr));
    if (!reply)
        return {};
    return std::string(xcb_get_atom_name_name(reply.get()),
                       static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get())));
}

std::vector<std::uint32_t> XProperties::numbers(xcb_window_t window,
                                                const std::string& name) const {
    const auto cookie = xcb_get_property(_connection, false, window, atom(name),
                                         XCB_GET_PROPERTY_TYPE_ANY, 0, kMostNumbers);
    const auto reply = adopt(xcb_get_property_reply(_connection, cookie, nullptr));
    if (!reply || reply->format != 32)
        return {};
    const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return std::vector<std::uint32_t>(values, values + reply->value_len);
}

std::string XProperties::text(xcb_window_t window, xcb_atom_t name) const {
    const auto cookie =
        xcb_get_property(_connection, false, window, name, XCB_ATOM_STRING, 0, kMostTextWords);
    const auto reply = adopt(xcb_get_property_reply(_connection, cookie, nullptr));
    if (!reply || reply->format != 8)
        return {};
    return std::string(static_cast<const char*>(xcb_get_property_value(reply.get())),
                       reply->value_len);
}

double scaleFrom(const std::string& resources) {
    const std::string key = "Xft.dpi:";
    std::istringstream lines(resources);
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with(key))
            continue;
        double resolution = 0;
        std::istringstream value(line.substr(key.size()));
        value.imbue(std::locale::classic());
        // Outside these bounds it is a mistake, and no scale to draw with.
        if (value >> resolution && resolution >= kPlainResolution / 2 &&
            resolution <= kPlainResolution * 10)
            return resolution / kPlainResolution;
    }
    return 1;
}

}  // namespace displays
