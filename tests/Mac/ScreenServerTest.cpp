// SPDX-License-Identifier: MIT
// Screens of real X servers: one head, two heads, displays that come and go. Each test runs in a
// process of its own.
#include "ula/NativeTimer.h"
#include "ula/Screen.h"

#include "tests/support/DisplayServer.h"

#include <CoreFoundation/CoreFoundation.h>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <memory>

namespace tav::ula {
namespace {

using test::DisplayServer;
using Rectangle = math::GenRect<int>;

/// Runs the main run loop until the condition holds. False when it does not within a minute.
bool runUntil(const std::function<bool()>& condition) {
    const CFAbsoluteTime end = CFAbsoluteTimeGetCurrent() + 60;
    while (!condition()) {
        const CFTimeInterval left = end - CFAbsoluteTimeGetCurrent();
        if (left <= 0 ||
            CFRunLoopRunInMode(kCFRunLoopDefaultMode, left, true) == kCFRunLoopRunFinished)
            return condition();
    }
    return true;
}

/// Runs the main run loop until what has changed by now is settled: that is due before this timer.
void runPastSettlement() {
    bool isOver = false;
    const std::unique_ptr<NativeTimer> timer(NativeTimer::createTimer(300, [&] {
        isOver = true;
        CFRunLoopStop(CFRunLoopGetMain());
    }));
    while (!isOver)
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, 60, true);
}

/// Counts what it tells.
class Watch {
public:
    Watch() {
        signal->displaysChanged.connect([this] { ++changes; });
        signal->displaysSettled.connect([this] {
            ++settlements;
            CFRunLoopStop(CFRunLoopGetMain());
        });
    }
    /// The next time that it tells of displays at rest.
    bool settles() {
        const int before = settlements;
        return runUntil([&] { return settlements > before; });
    }

    std::unique_ptr<DisplayChangeSignal> signal{DisplayChangeSignal::create()};
    int changes = 0;
    int settlements = 0;
};

TEST(HeadlessScreen, WithoutADisplayServerThereAreNoScreens) {
    unsetenv("DISPLAY");
    EXPECT_FALSE(Screen::getPrimaryScreen().isValid);
    EXPECT_EQ(Screen::getPrimaryScreen().id, -1);
    EXPECT_TRUE(Screen::getAllScreens().empty());
    EXPECT_EQ(Screen::getScreenWorkingArea({0, 0}), Rectangle());
}

TEST(HeadlessScreen, NameThatLeadsNowhereHasNoScreens) {
    setenv("DISPLAY", ":4711", 1);
    EXPECT_FALSE(Screen::getPrimaryScreen().isValid);
    EXPECT_TRUE(Screen::getPrimaryScreen().details().outputName.empty());
}

TEST(HeadlessScreen, ChangeSignalCanBeMadeAndTellsNothing) {
    unsetenv("DISPLAY");
    Watch watch;
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
    EXPECT_EQ(watch.changes, 0);
}

TEST(OneHead, BoundsAreAboveTheOrigin) {
    const DisplayServer server("800x600x24");
    const Screen screen = Screen::getPrimaryScreen();
    EXPECT_EQ(screen.bounds, (Rectangle{0, -600, 800, 0}));
    EXPECT_EQ(screen.workingArea, screen.bounds);
    EXPECT_EQ(screen.bitsPerPixel, 24);
    EXPECT_EQ(Screen::getAllScreens().size(), 1u);
    EXPECT_EQ(Screen::getScreenFromHandle(screen.handle).id, 0);
    EXPECT_NE(screen.displayID(), 0);
    EXPECT_EQ(screen.details().outputName, "screen");
    EXPECT_EQ(screen.details().scaleFactor, 1);
    EXPECT_EQ(screen.details().refreshRate, 0);
}

TEST(OneHead, SixteenBitsPerPixel) {
    const DisplayServer server("800x600x16");
    EXPECT_EQ(Screen::getPrimaryScreen().bitsPerPixel, 16);
}

TEST(OneHead, WorkingAreaFollowsTheWindowManager) {
    const DisplayServer server("800x600x24");
    EXPECT_EQ(Screen::getScreenWorkingArea({1, -1}), (Rectangle{0, -600, 800, 0}));
    server.setProperty("_NET_WORKAREA", "32c", "0, 24, 800, 536");
    EXPECT_EQ(Screen::getScreenWorkingArea({1, -1}), (Rectangle{0, -576, 800, -40}));
}

TEST(OneHead, WorkingAreaBeyondAllBoundsIsCutToTheDisplay) {
    const DisplayServer server("800x600x24");
    server.setProperty("_NET_WORKAREA", "32c", "0, 24, 2147483647, 4294967295");
    EXPECT_EQ(Screen::getPrimaryScreen().workingArea, (Rectangle{0, -600, 800, 0}));
    server.setProperty("_NET_WORKAREA", "32c", "0, 24, 2147483647, 2147483647");
    EXPECT_EQ(Screen::getPrimaryScreen().workingArea, (Rectangle{0, -576, 800, 0}));
    server.setProperty("_NET_WORKAREA", "32c", "2147483647, 2147483647, 2147483647, 2147483647");
    EXPECT_EQ(Screen::getPrimaryScreen().workingArea, (Rectangle{0, -600, 800, 0}));
}

TEST(OneHead, ScaleFollowsTheUsersChoice) {
    const DisplayServer server("800x600x24");
    server.setProperty("RESOURCE_MANAGER", "8s", "Xft.dpi:\t144");
    EXPECT_EQ(Screen::getPrimaryScreen().details().scaleFactor, 1.5);
}

TEST(TwoHeads, HaveTheirSizesAndPlaces) {
    const DisplayServer server;
    server.addSecondHead();
    const std::vector<Screen> screens = Screen::getAllScreens();
    ASSERT_EQ(screens.size(), 2u);
    EXPECT_EQ(screens[0].bounds, (Rectangle{0, -1024, 1280, 0}));
    // The upper edges are in line, and so it ends 256 pixels higher.
    EXPECT_EQ(screens[1].bounds, (Rectangle{1280, -1024, 2304, -256}));
    EXPECT_TRUE(screens[0].isPrimary);
    EXPECT_FALSE(screens[1].isPrimary);
    EXPECT_EQ(screens[0].details().outputName, "DUMMY0");
    EXPECT_EQ(screens[1].details().outputName, "DUMMY1");
    EXPECT_NEAR(screens[0].details().refreshRate, 85, 0.1);
    EXPECT_NE(screens[0].displayID(), screens[1].displayID());
}

TEST(TwoHeads, LookupsGoToTheRightOne) {
    const DisplayServer server;
    server.addSecondHead();
    EXPECT_EQ(Screen::getScreenFromPoint({1280, -500}).id, 0);
    EXPECT_EQ(Screen::getScreenFromPoint({1281, -500}).id, 1);
    EXPECT_FALSE(Screen::getScreenFromPoint({1281, -10}).isValid);
    EXPECT_EQ(Screen::getScreenFromRect({1180, -600, 1480, -500}).id, 1);
    EXPECT_EQ(Screen::getScreenFromRect({1180, -600, 1380, -500}).id, 0);
    EXPECT_EQ(Screen::getScreenBounds({2000, -500}), (Rectangle{1280, -1024, 2304, -256}));
}

TEST(TwoHeads, PanelsBeyondAllBoundsAreNoPanels) {
    const DisplayServer server;
    server.addSecondHead();
    server.setProperty("_NET_WM_STRUT_PARTIAL", "32c",
                       "2147483647, 2147483648, 30, 0, 2147483648, 2147483647, 0, 4294967295, 0, "
                       "1279, 0, 0");
    // The root window stands for a panel's.
    const std::string root = server.describeWindow("-root");
    const std::size_t number = root.find("0x");
    server.setProperty("_NET_CLIENT_LIST", "32x",
                       root.substr(number, root.find(' ', number) - number));
    const std::vector<Screen> screens = Screen::getAllScreens();
    ASSERT_EQ(screens.size(), 2u);
    EXPECT_EQ(screens[0].workingArea, (Rectangle{0, -994, 1280, 0}));
    EXPECT_EQ(screens[1].workingArea, screens[1].bounds);
}

TEST(TwoHeads, PrimaryOneIsTheOriginWhereverItStands) {
    const DisplayServer server;
    server.addSecondHead();
    server.configure("--output DUMMY1 --primary");
    const std::vector<Screen> screens = Screen::getAllScreens();
    ASSERT_EQ(screens.size(), 2u);
    EXPECT_EQ(screens[0].details().outputName, "DUMMY1");
    EXPECT_EQ(screens[0].bounds, (Rectangle{0, -768, 1024, 0}));
    EXPECT_EQ(screens[1].bounds, (Rectangle{-1280, -768, 0, 256}));
}

TEST(TwoHeads, MirroredOnesAreOne) {
    const DisplayServer server;
    server.addSecondHead("--same-as DUMMY0");
    server.configure("--output DUMMY0 --mode 1024x768");
    const std::vector<Screen> screens = Screen::getAllScreens();
    ASSERT_EQ(screens.size(), 1u);
    EXPECT_EQ(screens[0].details().outputName, "DUMMY0");
}

TEST(ChangingDisplays, OneThatIsPluggedInIsTold) {
    const DisplayServer server;
    Watch watch;
    EXPECT_EQ(Screen::getAllScreens().size(), 1u);
    server.addSecondHead();
    EXPECT_TRUE(watch.settles());
    EXPECT_GT(watch.changes, 0);
    EXPECT_EQ(Screen::getAllScreens().size(), 2u);
}

TEST(ChangingDisplays, OneThatIsPulledOutIsTold) {
    const DisplayServer server;
    server.addSecondHead();
    Watch watch;
    const int primary = Screen::getPrimaryScreen().displayID();
    const Screen gone = Screen::getScreenFromPoint({2000, -500});
    server.configure("--output DUMMY1 --off");
    EXPECT_TRUE(watch.settles());
    EXPECT_EQ(Screen::getAllScreens().size(), 1u);
    EXPECT_EQ(Screen::getPrimaryScreen().displayID(), primary);
    // What was looked up before stays a value.
    EXPECT_EQ(gone.bounds, (Rectangle{1280, -1024, 2304, -256}));
    EXPECT_EQ(gone.details().outputName, "DUMMY1");
    EXPECT_FALSE(Screen::getScreenFromHandle(gone.handle).isValid);
}

TEST(ChangingDisplays, AnotherModeIsTold) {
    const DisplayServer server;
    Watch watch;
    server.configure("--output DUMMY0 --mode 1600x1200");
    EXPECT_TRUE(watch.settles());
    EXPECT_EQ(Screen::getPrimaryScreen().bounds, (Rectangle{0, -1200, 1600, 0}));
}

TEST(ChangingDisplays, LookupNeedsNoRunLoop) {
    const DisplayServer server;
    EXPECT_EQ(Screen::getPrimaryScreen().bounds.right, 1280);
    server.configure("--output DUMMY0 --mode 800x600");
    EXPECT_EQ(Screen::getPrimaryScreen().bounds.right, 800);
}

TEST(ChangingDisplays, BurstIsOneSettlement) {
    const DisplayServer server;
    Watch watch;
    for (const char* mode : {"1600x1200", "800x600", "1024x768"}) {
        server.configure(std::string("--output DUMMY0 --mode ") + mode);
        // Looked at in between each is a change of its own.
        EXPECT_TRUE(Screen::getPrimaryScreen().isValid);
    }
    EXPECT_TRUE(watch.settles());
    runPastSettlement();
    EXPECT_EQ(watch.settlements, 1);
    EXPECT_GE(watch.changes, 3);
    EXPECT_EQ(Screen::getPrimaryScreen().bounds.right, 1024);
}

TEST(ChangingDisplays, ThereAndBackIsNoSettlement) {
    const DisplayServer server;
    Watch watch;
    for (const char* mode : {"800x600", "1280x1024"}) {
        server.configure(std::string("--output DUMMY0 --mode ") + mode);
        EXPECT_TRUE(Screen::getPrimaryScreen().isValid);
    }
    EXPECT_TRUE(runUntil([&] { return watch.changes >= 2; }));
    runPastSettlement();
    EXPECT_EQ(watch.settlements, 0);
}

TEST(ChangingDisplays, WorkingAreaAloneIsNoChange) {
    const DisplayServer server;
    Watch watch;
    server.setProperty("_NET_WORKAREA", "32c", "0, 24, 1280, 1000");
    EXPECT_EQ(Screen::getPrimaryScreen().workingArea.top, -1000);
    runPastSettlement();
    EXPECT_EQ(watch.changes, 0);
    EXPECT_EQ(watch.settlements, 0);
}

TEST(ChangingDisplays, ServerThatDiesTakesItsScreensAlong) {
    DisplayServer server;
    server.addSecondHead();
    Watch watch;
    const Screen screen = Screen::getPrimaryScreen();
    ASSERT_TRUE(screen.isValid);
    server.kill();
    EXPECT_TRUE(watch.settles());
    EXPECT_TRUE(Screen::getAllScreens().empty());
    EXPECT_FALSE(Screen::getPrimaryScreen().isValid);
    EXPECT_EQ(screen.details().refreshRate, 0);
}

TEST(ChangingDisplays, ServerThatDiesUnwatchedIsNoticedAtTheNextLook) {
    DisplayServer server("800x600x24");
    ASSERT_TRUE(Screen::getPrimaryScreen().isValid);
    server.kill();
    EXPECT_FALSE(Screen::getPrimaryScreen().isValid);
}

TEST(ChangingDisplays, NothingIsToldAfterTheEnd) {
    const DisplayServer server;
    int changes = 0;
    Watch other;
    auto* const signal = DisplayChangeSignal::create();
    signal->displaysChanged.connect([&] { ++changes; });
    server.configure("--output DUMMY0 --mode 800x600");
    // The change is known and due now.
    EXPECT_EQ(Screen::getPrimaryScreen().bounds.right, 800);
    delete signal;
    EXPECT_TRUE(other.settles());
    EXPECT_EQ(changes, 0);
}

TEST(ChangingDisplays, SlotMayDeleteItsSignal) {
    const DisplayServer server;
    auto* signal = DisplayChangeSignal::create();
    signal->displaysChanged.connect([&] {
        delete signal;
        signal = nullptr;
    });
    server.configure("--output DUMMY0 --mode 800x600");
    EXPECT_TRUE(runUntil([&] { return signal == nullptr; }));
}

TEST(ChangingDisplays, SlotOfTheSettlementMayDeleteItsSignal) {
    const DisplayServer server;
    auto* signal = DisplayChangeSignal::create();
    signal->displaysSettled.connect([&] {
        delete signal;
        signal = nullptr;
        CFRunLoopStop(CFRunLoopGetMain());
    });
    server.configure("--output DUMMY0 --mode 800x600");
    EXPECT_TRUE(runUntil([&] { return signal == nullptr; }));
}

TEST(ChangingDisplays, RunLoopEndsWhenNobodyWatches) {
    const DisplayServer server("800x600x24");
    { Watch watch; }
    EXPECT_TRUE(Screen::getPrimaryScreen().isValid);
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 60, false), kCFRunLoopRunFinished);
}

}  // namespace
}  // namespace tav::ula
