// SPDX-License-Identifier: MIT
// The platform's calls on real X servers.
#include "tests/support/DisplayServer.h"

#include <ApplicationServices/ApplicationServices.h>
#include <gtest/gtest.h>
#include <map>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using tav::test::DisplayServer;

/// The flags of each display since the last look.
std::map<CGDirectDisplayID, CGDisplayChangeSummaryFlags> told;

void note(CGDirectDisplayID display, CGDisplayChangeSummaryFlags flags, void*) {
    told[display] |= flags;
}

/// Runs the main run loop until some display was told with this flag, and gives that display.
CGDirectDisplayID waitFor(CGDisplayChangeSummaryFlags flag) {
    for (const CFAbsoluteTime end = CFAbsoluteTimeGetCurrent() + 60;
         CFAbsoluteTimeGetCurrent() < end;) {
        for (const auto& [display, flags] : told)
            if ((flags & flag) != 0)
                return display;
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, 60, true);
    }
    return kCGNullDirectDisplay;
}

class Reconfiguration : public testing::Test {
protected:
    Reconfiguration() { CGDisplayRegisterReconfigurationCallback(note, this); }
    ~Reconfiguration() override { CGDisplayRemoveReconfigurationCallback(note, this); }

    DisplayServer server;
};

TEST_F(Reconfiguration, PluggingInAndPullingOutNameTheSameDisplay) {
    server.addSecondHead();
    const CGDirectDisplayID display = waitFor(kCGDisplayAddFlag);
    EXPECT_NE(display, kCGNullDirectDisplay);
    told.clear();
    server.configure("--output DUMMY1 --off");
    EXPECT_EQ(waitFor(kCGDisplayRemoveFlag), display);
    told.clear();
    server.addSecondHead("--left-of DUMMY0");
    EXPECT_EQ(waitFor(kCGDisplayAddFlag), display);
}

TEST_F(Reconfiguration, ModeIsTold) {
    server.configure("--output DUMMY0 --mode 1024x768 --rate 75");
    const CGDirectDisplayID display = waitFor(kCGDisplaySetModeFlag);
    const CGDisplayModeRef mode = CGDisplayCopyDisplayMode(display);
    ASSERT_NE(mode, nullptr);
    EXPECT_NEAR(CGDisplayModeGetRefreshRate(mode), 75, 0.1);
    CGDisplayModeRelease(mode);
}

TEST_F(Reconfiguration, NewMainDisplayIsTold) {
    server.addSecondHead();
    const CGDirectDisplayID second = waitFor(kCGDisplayAddFlag);
    server.configure("--output DUMMY1 --primary");
    EXPECT_EQ(waitFor(kCGDisplaySetMainFlag), second);
}

TEST_F(Reconfiguration, DeathOfTheServerRemovesTheDisplay) {
    server.kill();
    const CGDirectDisplayID display = waitFor(kCGDisplayRemoveFlag);
    EXPECT_NE(display, kCGNullDirectDisplay);
    EXPECT_EQ(CGDisplayCopyDisplayMode(display), nullptr);
}

TEST_F(Reconfiguration, ForkedChildDisturbsNobody) {
    const pid_t child = fork();
    if (child == 0) {
        server.configure("--output DUMMY0 --mode 800x600");
        // A connection of its own: the parent's is still there when this one ends.
        const CGDisplayModeRef mode = CGDisplayCopyDisplayMode(1);
        CGDisplayModeRelease(mode);
        _exit(0);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_NE(waitFor(kCGDisplaySetModeFlag), kCGNullDirectDisplay);
}

TEST(ReconfigurationCalls, WrongArgumentsAreRefused) {
    EXPECT_EQ(CGDisplayRegisterReconfigurationCallback(nullptr, nullptr), kCGErrorIllegalArgument);
    EXPECT_EQ(CGDisplayRemoveReconfigurationCallback(note, nullptr), kCGErrorIllegalArgument);
    EXPECT_EQ(CGDisplayCopyDisplayMode(kCGNullDirectDisplay), nullptr);
    CGDisplayModeRelease(nullptr);
}

}  // namespace
