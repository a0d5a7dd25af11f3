// SPDX-License-Identifier: MIT
#include "XServer.h"

#include "XMonitors.h"
#include "XReply.h"

#include <algorithm>
#include <unistd.h>

namespace displays {

namespace {

// Monitors are asked for since this version.
constexpr std::uint32_t kMajor = 1;
constexpr std::uint32_t kMinor = 5;

constexpr const char* kDesktopProperties[] = {
    "_NET_WORKAREA",     "_NET_CURRENT_DESKTOP", "_NET_CLIENT_LIST",  "RESOURCE_MANAGER",
    "_GTK_WORKAREAS_D0", "_GTK_WORKAREAS_D1",    "_GTK_WORKAREAS_D2", "_GTK_WORKAREAS_D3",
};

// The event number of XRandR; 0 where it is missing or too old.
std::uint8_t firstEventOfRandR(xcb_connection_t* connection) {
    const xcb_query_extension_reply_t* const extension =
        xcb_get_extension_data(connection, &xcb_randr_id);
    if (extension == nullptr || extension->present == 0)
        return 0;
    const auto cookie = xcb_randr_query_version(connection, kMajor, kMinor);
    const auto version = adopt(xcb_randr_query_version_reply(connection, cookie, nullptr));
    const bool isNewEnough =
        version && (version->major_version > kMajor ||
                    (version->major_version == kMajor && version->minor_version >= kMinor));
    return isNewEnough ? extension->first_event : std::uint8_t{0};
}

// Places on a screen have sixteen bits. Properties are anybody's: what is further off is cut, so
// that no sum of a few of them overflows.
int pixels(std::uint32_t number) {
    constexpr int kFurthest = 0xFFFF;
    return std::clamp(static_cast<int>(number), -kFurthest, kFurthest);
}

// The areas of a list of numbers, four for each.
std::vector<Area> areasOf(const std::vector<std::uint32_t>& numbers) {
    std::vector<Area> areas;
    for (std::size_t i = 0; i + 4 <= numbers.size(); i += 4)
        areas.push_back({pixels(numbers[i]), pixels(numbers[i + 1]), pixels(numbers[i + 2]),
                         pixels(numbers[i + 3])});
    return areas;
}

}  // namespace

XServer::XServer(xcb_connection_t* connection, const xcb_screen_t& screen)
    : _connection(connection),
      _root(screen.root),
      _bitsPerPixel(screen.root_depth),
      _properties(connection),
      _firstEvent(firstEventOfRandR(connection)) {
    for (const char* name : kDesktopProperties)
        _desktopProperties.push_back(_properties.atom(name));
    askForNews();
}

XServer::~XServer() {
    if (_connection != nullptr)
        xcb_disconnect(_connection);
}

void XServer::abandon() {
    // Disconnecting would shut down what the parent goes on with. The memory is given up.
    close(xcb_get_file_descriptor(_connection));
    _connection = nullptr;
}

int XServer::descriptor() const {
    return xcb_get_file_descriptor(_connection);
}

void XServer::askForNews() {
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(_connection, _root, XCB_CW_EVENT_MASK, &events);
    if (_firstEvent != 0)
        xcb_randr_select_input(_connection, _root,
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    xcb_flush(_connection);
}

bool XServer::isOfDesktop(xcb_atom_t property) const {
    return std::find(_desktopProperties.begin(), _desktopProperties.end(), property) !=
           _desktopProperties.end();
}

Server::News XServer::newsOf(const xcb_generic_event_t& event) const {
    const auto type = static_cast<std::uint8_t>(event.response_type & ~0x80);
    if (type == XCB_PROPERTY_NOTIFY) {
        const auto& notice = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        return isOfDesktop(notice.atom) ? News::UsableAreas : News::None;
    }
    const bool isRandR =
        _firstEvent != 0 && (type == _firstEvent + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
                             type == _firstEvent + XCB_RANDR_NOTIFY);
    return isRandR || type == XCB_CONFIGURE_NOTIFY ? News::Arrangement : News::None;
}

Server::News XServer::takeNews() {
    News news = News::None;
    while (const auto event = adopt(xcb_poll_for_event(_connection)))
        news = std::max(news, newsOf(*event));
    return xcb_connection_has_error(_connection) != 0 ? News::Lost : news;
}

Displays XServer::readFrames() {
    if (_firstEvent != 0)
        return readMonitors(_connection, _root);
    const auto cookie = xcb_get_geometry(_connection, _root);
    const auto whole = adopt(xcb_get_geometry_reply(_connection, cookie, nullptr));
    if (!whole)
        return {};
    Display display;
    display.id = _root;
    display.name = "default";
    display.frame = {0, 0, whole->width, whole->height};
    return {display};
}

std::vector<Struts> XServer::readPanels() const {
    std::vector<Struts> panels;
    for (const std::uint32_t window : _properties.numbers(_root, "_NET_CLIENT_LIST")) {
        const std::vector<std::uint32_t> numbers =
            _properties.numbers(window, "_NET_WM_STRUT_PARTIAL");
        if (numbers.size() != 12)
            continue;
        Struts struts;
        for (std::size_t edge = 0; edge < struts.size(); ++edge)
            struts[edge] = {pixels(numbers[edge]), pixels(numbers[4 + 2 * edge]),
                            pixels(numbers[5 + 2 * edge])};
        panels.push_back(struts);
    }
    return panels;
}

Desktop XServer::readDesktop() const {
    Desktop desktop;
    const auto cookie = xcb_get_geometry(_connection, _root);
    if (const auto whole = adopt(xcb_get_geometry_reply(_connection, cookie, nullptr))) {
        desktop.width = whole->width;
        desktop.height = whole->height;
    }
    const std::vector<std::uint32_t> current = _properties.numbers(_root, "_NET_CURRENT_DESKTOP");
    const std::uint32_t number = current.empty() ? 0 : current.front();
    desktop.areas =
        areasOf(_properties.numbers(_root, "_GTK_WORKAREAS_D" + std::to_string(number)));
    const std::vector<Area> areas = areasOf(_properties.numbers(_root, "_NET_WORKAREA"));
    if (number < areas.size())
        desktop.area = areas[number];
    return desktop;
}

Displays XServer::read() {
    Displays displays = readFrames();
    if (displays.empty())
        return displays;
    std::vector<Area> frames;
    for (const Display& display : displays)
        frames.push_back(display.frame);
    Desktop desktop = readDesktop();
    if (displays.size() > 1 && desktop.areas.empty())
        desktop.panels = readPanels();
    const std::vector<Area> areas = workingAreas(frames, desktop);
    const double scale = scaleFrom(_properties.text(_root, XCB_ATOM_RESOURCE_MANAGER));
    const Area main = frames.front();
    for (std::size_t i = 0; i < displays.size(); ++i) {
        Display& display = displays[i];
        display.workingArea = areas[i];
        display.bitsPerPixel = _bitsPerPixel;
        display.scale = scale;
        for (Area* area : {&display.frame, &display.workingArea}) {
            area->x -= main.x;
            area->y -= main.y;
        }
    }
    return displays;
}

std::unique_ptr<Server> connectToServer() {
    int number = 0;
    xcb_connection_t* const connection = xcb_connect(nullptr, &number);
    auto screens = xcb_connection_has_error(connection) != 0
                       ? xcb_screen_iterator_t{}
                       : xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screens.rem > 1 && number > 0; --number)
        xcb_screen_next(&screens);
    if (screens.rem == 0) {
        xcb_disconnect(connection);
        return nullptr;
    }
    return std::make_unique<XServer>(connection, *screens.data);
}

}  // namespace displays
