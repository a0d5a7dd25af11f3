// SPDX-License-Identifier: MIT
// Windows of two processes, one above the other. Needs an X server without a window manager.
#include "AppKit/ActivateWindows.h"

#include "tests/support/ChildProcess.h"

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <unistd.h>
#include <xcb/xcb.h>

namespace {

using namespace tav::test;

struct Free {
    void operator()(void* memory) const { free(memory); }
};

class Display {
public:
    Display() : _connection(xcb_connect(nullptr, nullptr)) {}
    ~Display() { xcb_disconnect(_connection); }
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    xcb_window_t makeWindow(bool isShown = true) {
        const xcb_window_t window = xcb_generate_id(_connection);
        xcb_create_window(_connection, XCB_COPY_FROM_PARENT, window, root(), 0, 0, 50, 50, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        if (isShown)
            xcb_map_window(_connection, window);
        finish();
        return window;
    }
    void setProperty(xcb_window_t window, const char* name, xcb_atom_t type, uint32_t value) {
        const auto question =
            xcb_intern_atom(_connection, 0, static_cast<uint16_t>(strlen(name)), name);
        const std::unique_ptr<xcb_intern_atom_reply_t, Free> atom(
            xcb_intern_atom_reply(_connection, question, nullptr));
        xcb_change_property(_connection, XCB_PROP_MODE_REPLACE, window, atom->atom, type, 32, 1,
                            &value);
        finish();
    }
    xcb_window_t uppermost() {
        const std::unique_ptr<xcb_query_tree_reply_t, Free> tree(
            xcb_query_tree_reply(_connection, xcb_query_tree(_connection, root()), nullptr));
        return xcb_query_tree_children(tree.get())[tree->children_len - 1];
    }
    xcb_window_t focus() { return finish()->focus; }

private:
    xcb_window_t root() const {
        return xcb_setup_roots_iterator(xcb_get_setup(_connection)).data->root;
    }
    // The server has done everything before.
    std::unique_ptr<xcb_get_input_focus_reply_t, Free> finish() {
        return std::unique_ptr<xcb_get_input_focus_reply_t, Free>(
            xcb_get_input_focus_reply(_connection, xcb_get_input_focus(_connection), nullptr));
    }

    xcb_connection_t* _connection;
};

// A process with a window, until its end.
class Other {
public:
    explicit Other(bool isShown = true)
        : _process([this, isShown] {
              Display display;
              *_window = display.makeWindow(isShown);
              [[maybe_unused]] const ssize_t told = ::write(_ends[1], "x", 1);
              pause();
          }) {
        char byte = 0;
        EXPECT_EQ(read(_ends[0], &byte, 1), 1);
    }
    ~Other() {
        close(_ends[0]);
        close(_ends[1]);
    }

    pid_t process() const { return _process.id(); }
    xcb_window_t window() { return *_window; }

private:
    struct Ends {
        Ends() { EXPECT_EQ(pipe(ends), 0); }
        int operator[](int i) const { return ends[i]; }
        int ends[2];
    };

    Ends _ends;
    Shared<xcb_window_t> _window;
    ChildProcess _process;
};

// The server begins anew, and refuses connections meanwhile, when its last client leaves.
class ActivateWindows : public testing::Test {
protected:
    static void SetUpTestSuite() { client = std::make_unique<Display>(); }
    static void TearDownTestSuite() { client.reset(); }

private:
    static std::unique_ptr<Display> client;
};

std::unique_ptr<Display> ActivateWindows::client;

TEST_F(ActivateWindows, BringsThoseOfTheProcessToTheFront) {
    Other other;
    Display own;
    const xcb_window_t above = own.makeWindow();
    ASSERT_EQ(own.uppermost(), above);
    EXPECT_TRUE(appkit::activateWindows(other.process()));
    EXPECT_EQ(own.uppermost(), other.window());
    EXPECT_EQ(own.focus(), other.window());
}

TEST_F(ActivateWindows, BelievesWhatAWindowSaysOfItsProcess) {
    const ChildProcess idle([] { pause(); });
    Display own;
    const xcb_window_t below = own.makeWindow();
    own.setProperty(below, "_NET_WM_PID", XCB_ATOM_CARDINAL, static_cast<uint32_t>(idle.id()));
    const xcb_window_t above = own.makeWindow();
    ASSERT_EQ(own.uppermost(), above);
    EXPECT_TRUE(appkit::activateWindows(idle.id()));
    EXPECT_EQ(own.uppermost(), below);
}

TEST_F(ActivateWindows, LeavesHiddenOnesWhereTheyAre) {
    const Other other(false);
    Display own;
    const xcb_window_t above = own.makeWindow();
    EXPECT_FALSE(appkit::activateWindows(other.process()));
    EXPECT_EQ(own.uppermost(), above);
}

TEST_F(ActivateWindows, CannotWithoutWindows) {
    const ChildProcess idle([] { pause(); });
    EXPECT_FALSE(appkit::activateWindows(idle.id()));
}

TEST_F(ActivateWindows, CannotWithoutADisplay) {
    const std::string display = getenv("DISPLAY");
    const Other other;
    unsetenv("DISPLAY");
    EXPECT_FALSE(appkit::activateWindows(other.process()));
    setenv("DISPLAY", display.c_str(), 1);
}

}  // namespace
