// SPDX-License-Identifier: MIT
// Spoken over a connection of its own, without Xlib: there the answer to a window that has just
// gone would end the program by a handler that all its parts share.
#include "AppKit/ActivateWindows.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>
#include <xcb/res.h>
#include <xcb/xcb.h>

namespace appkit {

namespace {

constexpr uint32_t kManyWindows = 4096;

struct Free {
    void operator()(void* memory) const { free(memory); }
};
template <class Reply>
using Owned = std::unique_ptr<Reply, Free>;

class Display {
public:
    Display() : _connection(xcb_connect(nullptr, &_screenNumber)), _root(findRoot()) {}
    ~Display() { xcb_disconnect(_connection); }
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    bool activate(pid_t process);

private:
    xcb_window_t findRoot() const;
    xcb_atom_t atom(const char* name) const;
    std::vector<uint32_t> numbers(xcb_window_t window, const char* property, xcb_atom_t type) const;
    std::vector<xcb_window_t> windows() const;
    std::vector<xcb_window_t> windowsOf(pid_t process) const;
    uint32_t ownerOf(xcb_window_t window) const;
    uint32_t ownerByConnection(xcb_window_t window) const;
    bool isShown(xcb_window_t window) const;
    void askManager(xcb_window_t window) const;
    void raise(xcb_window_t window) const;

    int _screenNumber = 0;
    xcb_connection_t* _connection;
    const xcb_window_t _root;
};

// None without a server. Asked for once: a connection that breaks later has no setup any more.
xcb_window_t Display::findRoot() const {
    const xcb_setup_t* setup = xcb_get_setup(_connection);
    if (setup == nullptr)
        return XCB_WINDOW_NONE;
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(setup);
    for (int i = 0; i < _screenNumber && screens.rem > 1; ++i)
        xcb_screen_next(&screens);
    return screens.rem > 0 ? screens.data->root : xcb_window_t{XCB_WINDOW_NONE};
}

xcb_atom_t Display::atom(const char* name) const {
    const auto question =
        xcb_intern_atom(_connection, 0, static_cast<uint16_t>(strlen(name)), name);
    const Owned<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(_connection, question, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

// Empty when the window has no such property, or is gone.
std::vector<uint32_t> Display::numbers(xcb_window_t window, const char* property,
                                       xcb_atom_t type) const {
    const auto question =
        xcb_get_property(_connection, 0, window, atom(property), type, 0, kManyWindows);
    const Owned<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(_connection, question, nullptr));
    if (!reply || reply->format != 32)
        return {};
    const auto* values = static_cast<const uint32_t*>(xcb_get_property_value(reply.get()));
    return {values, values + reply->value_len};
}

// From the lowest to the uppermost: the manager's list, else the children of the root.
std::vector<xcb_window_t> Display::windows() const {
    for (const char* list : {"_NET_CLIENT_LIST_STACKING", "_NET_CLIENT_LIST"})
        if (auto found = numbers(_root, list, XCB_ATOM_WINDOW); !found.empty())
            return found;
    const Owned<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(_connection, xcb_query_tree(_connection, _root), nullptr));
    if (!tree)
        return {};
    const xcb_window_t* children = xcb_query_tree_children(tree.get());
    return {children, children + xcb_query_tree_children_length(tree.get())};
}

// Not every toolkit says which process a window belongs to; GNUstep's does not without a manager.
uint32_t Display::ownerOf(xcb_window_t window) const {
    const auto told = numbers(window, "_NET_WM_PID", XCB_ATOM_CARDINAL);
    return told.empty() ? ownerByConnection(window) : told[0];
}

// The server knows it of the programs on its own machine. 0 when it does not.
uint32_t Display::ownerByConnection(xcb_window_t window) const {
    const xcb_query_extension_reply_t* extension = xcb_get_extension_data(_connection, &xcb_res_id);
    if (extension == nullptr || !extension->present)
        return 0;
    const xcb_res_client_id_spec_t wanted = {window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    const Owned<xcb_res_query_client_ids_reply_t> reply(xcb_res_query_client_ids_reply(
        _connection, xcb_res_query_client_ids(_connection, 1, &wanted), nullptr));
    if (!reply)
        return 0;
    const auto ids = xcb_res_query_client_ids_ids_iterator(reply.get());
    const bool hasValue = ids.rem > 0 && xcb_res_client_id_value_value_length(ids.data) > 0;
    return hasValue ? *xcb_res_client_id_value_value(ids.data) : 0;
}

// Menus and the like have no part in the order of windows.
bool Display::isShown(xcb_window_t window) const {
    const Owned<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        _connection, xcb_get_window_attributes(_connection, window), nullptr));
    return attributes && !attributes->override_redirect &&
           attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

std::vector<xcb_window_t> Display::windowsOf(pid_t process) const {
    std::vector<xcb_window_t> found;
    for (xcb_window_t window : windows())
        if (ownerOf(window) == static_cast<uint32_t>(process))
            found.push_back(window);
    return found;
}

void Display::askManager(xcb_window_t window) const {
    constexpr uint32_t kAsPager = 2;
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom("_NET_ACTIVE_WINDOW");
    message.data.data32[0] = kAsPager;
    xcb_send_event(_connection, 0, _root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
}

void Display::raise(xcb_window_t window) const {
    const uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(_connection, window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    xcb_set_input_focus(_connection, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
}

// A manager also shows what was minimized; without one, windows that are not shown are not meant to
// be.
bool Display::activate(pid_t process) {
    if (_root == XCB_WINDOW_NONE)
        return false;
    const bool isManaged = !numbers(_root, "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW).empty();
    bool isAsked = false;
    for (xcb_window_t window : windowsOf(process)) {
        if (!isManaged && !isShown(window))
            continue;
        isManaged ? askManager(window) : raise(window);
        isAsked = true;
    }
    // Everything has been carried out when this is answered.
    const Owned<xcb_get_input_focus_reply_t> done(
        xcb_get_input_focus_reply(_connection, xcb_get_input_focus(_connection), nullptr));
    return isAsked && done;
}

}  // namespace

bool activateWindows(pid_t process) {
    return Display().activate(process);
}

}  // namespace appkit
