// SPDX-License-Identifier: MIT
// The screens that AppKit's own classes work with. Each test runs in a process of its own.
#import <AppKit/AppKit.h>
#import <AppKit/NSScreen+Names.h>
#import <GNUstepGUI/GSDisplayServer.h>

#include "tests/support/DisplayServer.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

namespace {

using tav::test::DisplayServer;

class Screens : public testing::Test {
protected:
    Screens() : _pool([[NSAutoreleasePool alloc] init]) {}
    ~Screens() override { [_pool release]; }

    static NSWindow* windowAt(CGFloat x, CGFloat y) {
        NSWindow* const window = [[[NSWindow alloc] initWithContentRect:NSMakeRect(x, y, 200, 100)
                                                              styleMask:NSBorderlessWindowMask
                                                                backing:NSBackingStoreBuffered
                                                                  defer:NO] autorelease];
        [window setReleasedWhenClosed:NO];
        [window orderFront:nil];
        return window;
    }
    static void handleEventsFor(NSTimeInterval seconds) {
        NSEvent* const event =
            [NSApp nextEventMatchingMask:NSAnyEventMask
                               untilDate:[NSDate dateWithTimeIntervalSinceNow:seconds]
                                  inMode:NSDefaultRunLoopMode
                                 dequeue:YES];
        if (event != nil)
            [NSApp sendEvent:event];
    }
    /// Whether X has the window's upper left corner there, at the latest after half a minute.
    static bool isInX(const DisplayServer& server, NSWindow* window, int x, int y) {
        const auto number = static_cast<int>([window windowNumber]);
        const std::string which =
            "-id " +
            std::to_string(reinterpret_cast<long>([GSCurrentServer() windowDevice:number]));
        const std::string wanted = "upper-left X:  " + std::to_string(x) +
                                   "\n  Absolute upper-left Y:  " + std::to_string(y) + "\n";
        NSDate* const end = [NSDate dateWithTimeIntervalSinceNow:30];
        while (server.describeWindow(which).find(wanted) == std::string::npos) {
            if ([end timeIntervalSinceNow] <= 0)
                return false;
            handleEventsFor(0.05);
        }
        return true;
    }

    NSAutoreleasePool* _pool;
};

TEST_F(Screens, WithoutADisplayServerTheListIsEmpty) {
    unsetenv("DISPLAY");
    EXPECT_EQ([[NSScreen screens] count], 0u);
    EXPECT_EQ([NSScreen mainScreen], nil);
    EXPECT_EQ([NSScreen deepestScreen], nil);
}

TEST_F(Screens, NeedNoApplicationObject) {
    const DisplayServer server("800x600x24");
    ASSERT_EQ([[NSScreen screens] count], 1u);
    NSScreen* screen = [NSScreen mainScreen];
    EXPECT_TRUE(NSEqualRects([screen frame], NSMakeRect(0, 0, 800, 600)));
    EXPECT_EQ(NSBitsPerPixelFromDepth([screen depth]), 24);
    EXPECT_TRUE([[screen localizedName] isEqual:@"screen"]);
    EXPECT_EQ([screen backingScaleFactor], 1);
}

TEST_F(Screens, PrimaryOneIsTheOriginAndOthersAreRelativeToIt) {
    const DisplayServer server;
    server.addSecondHead();
    NSArray* screens = [NSScreen screens];
    ASSERT_EQ([screens count], 2u);
    EXPECT_TRUE(NSEqualRects([[screens objectAtIndex:0] frame], NSMakeRect(0, 0, 1280, 1024)));
    EXPECT_TRUE(NSEqualRects([[screens objectAtIndex:1] frame], NSMakeRect(1280, 256, 1024, 768)));
}

TEST_F(Screens, OnesThatStayAsTheyAreStayTheSameObjects) {
    const DisplayServer server;
    NSScreen* const first = [[NSScreen screens] objectAtIndex:0];
    EXPECT_EQ([[NSScreen screens] objectAtIndex:0], first);
    server.addSecondHead();
    ASSERT_EQ([[NSScreen screens] count], 2u);
    EXPECT_EQ([[NSScreen screens] objectAtIndex:0], first);
}

TEST_F(Screens, AHeldScreenOutlivesItsDisplay) {
    DisplayServer server("800x600x24");
    NSScreen* const screen = [[[NSScreen screens] objectAtIndex:0] retain];
    server.kill();
    EXPECT_EQ([[NSScreen screens] count], 0u);
    EXPECT_TRUE(NSEqualRects([screen frame], NSMakeRect(0, 0, 800, 600)));
    [screen release];
}

TEST_F(Screens, AWindowsScreenIsOneOfThem) {
    const DisplayServer server("800x600x24");
    [NSApplication sharedApplication];
    NSWindow* window = [[NSWindow alloc] initWithContentRect:NSMakeRect(100, 100, 200, 100)
                                                   styleMask:NSBorderlessWindowMask
                                                     backing:NSBackingStoreBuffered
                                                       defer:NO];
    [window orderFront:nil];
    EXPECT_EQ([window screen], [[NSScreen screens] objectAtIndex:0]);
    [window center];
    EXPECT_EQ(NSMidX([window frame]), 400);
    [window release];
}

// The primary display stands neither at the left nor at the lower edge of all displays.
TEST_F(Screens, WindowStandsWhereItsFrameSays) {
    const DisplayServer server;
    server.addSecondHead();
    server.configure("--output DUMMY1 --primary");
    [NSApplication sharedApplication];
    NSWindow* const window = windowAt(100, 100);
    EXPECT_TRUE(isInX(server, window, 1280 + 100, 768 - 100 - 100));
    EXPECT_TRUE(NSEqualRects([window frame], NSMakeRect(100, 100, 200, 100)));
    EXPECT_EQ([window screen], [[NSScreen screens] objectAtIndex:0]);
    [window setFrameOrigin:NSMakePoint(-1000, -200)];
    EXPECT_TRUE(isInX(server, window, 280, 868));
    EXPECT_EQ([window screen], [[NSScreen screens] objectAtIndex:1]);
}

TEST_F(Screens, WindowsStandRelativeToTheNewPrimaryDisplayOnceItHasChanged) {
    const DisplayServer server;
    server.addSecondHead();
    [NSApplication sharedApplication];
    NSWindow* const window = windowAt(100, 100);
    EXPECT_TRUE(isInX(server, window, 100, 1024 - 100 - 100));
    server.configure("--output DUMMY1 --primary");
    [window setFrameOrigin:NSMakePoint(50, 60)];
    EXPECT_TRUE(isInX(server, window, 1280 + 50, 768 - 60 - 100));
}

TEST_F(Screens, PointerIsRelativeToThePrimaryDisplay) {
    const DisplayServer server;
    server.addSecondHead();
    [NSApplication sharedApplication];
    const NSPoint before = [NSEvent mouseLocation];
    server.configure("--output DUMMY1 --primary");
    const NSPoint after = [NSEvent mouseLocation];
    EXPECT_EQ(after.x, before.x - 1280);
    EXPECT_EQ(after.y, before.y - 256);
}

}  // namespace
