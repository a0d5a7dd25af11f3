// SPDX-License-Identifier: MIT
// The screens that AppKit's own classes work with. Each test runs in a process of its own.
#import <AppKit/AppKit.h>
#import <AppKit/NSScreen+Names.h>

#include "tests/support/DisplayServer.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace {

using tav::test::DisplayServer;

class Screens : public testing::Test {
protected:
    Screens() : _pool([[NSAutoreleasePool alloc] init]) {}
    ~Screens() override { [_pool release]; }

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

}  // namespace
