// SPDX-License-Identifier: MIT
// What is told of displays, beside the screens of a real X server. Each test runs in a process of
// its own.
#include "ula/SystemInformation.h"

#include "tests/support/DisplayServer.h"
#include "ula/Screen.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace tav::ula {
namespace {

TEST(Displays, AreTheScreensInTheirOrder) {
    const test::DisplayServer server;
    server.addSecondHead();
    const std::vector<Screen> screens = Screen::getAllScreens();
    const std::vector<DisplayInfo> displays = SystemInformation::getDisplayInfo();
    ASSERT_EQ(screens.size(), 2u);
    ASSERT_EQ(displays.size(), 2u);
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(displays[i].width, screens[i].workingArea.right - screens[i].workingArea.left);
        EXPECT_EQ(displays[i].height, screens[i].workingArea.bottom - screens[i].workingArea.top);
        EXPECT_EQ(displays[i].bitsPerPixel, 24);
    }
    EXPECT_TRUE(displays[0].isPrimary);
    EXPECT_FALSE(displays[1].isPrimary);
}

TEST(Displays, OfOneHeadAreThatOne) {
    const test::DisplayServer server("800x600x24");
    const std::vector<DisplayInfo> displays = SystemInformation::getDisplayInfo();
    ASSERT_EQ(displays.size(), 1u);
    EXPECT_EQ(displays[0].width, 800);
    EXPECT_EQ(displays[0].height, 600);
    EXPECT_TRUE(displays[0].isPrimary);
}

TEST(Displays, AreNoneWithoutAServer) {
    unsetenv("DISPLAY");
    EXPECT_TRUE(SystemInformation::getDisplayInfo().empty());
}

}  // namespace
}  // namespace tav::ula
