// SPDX-License-Identifier: MIT
// How displays are found, with a list of the test's own in place of the system's.
#include "ula/Screen.h"

#include "tests/support/LogCapture.h"
#include "ula/ScopedARPool.h"

#import <AppKit/AppKit.h>
#include <gtest/gtest.h>
#include <objc/runtime.h>

namespace {

/// What the system is to answer.
NSArray* systemScreens = nil;

NSArray* answerScreens(id, SEL) {
    return systemScreens;
}

}  // namespace

/// A screen that says what it is told to.
@interface FixedScreen : NSScreen {
    NSRect _fixedFrame;
    NSRect _fixedVisible;
    int _number;
}
@end

@implementation FixedScreen

- (id)initWithFrame:(NSRect)frame visible:(NSRect)visible number:(int)number {
    _fixedFrame = frame;
    _fixedVisible = visible;
    _number = number;
    return self;
}

- (NSRect)frame {
    return _fixedFrame;
}

- (NSRect)visibleFrame {
    return _fixedVisible;
}

- (NSWindowDepth)depth {
    return NSTwentyFourBitRGBDepth;
}

- (NSDictionary*)deviceDescription {
    return @{@"NSScreenNumber" : [NSNumber numberWithInt:_number]};
}

- (BOOL)isEqual:(id)other {
    return [other isKindOfClass:[FixedScreen class]];
}

@end

namespace tav::ula {
namespace {

using Rectangle = math::GenRect<int>;

class ScreenLookup : public testing::Test {
protected:
    ScreenLookup() : _method(class_getClassMethod([NSScreen class], @selector(screens))) {
        _original = method_setImplementation(_method, reinterpret_cast<IMP>(answerScreens));
        systemScreens = [[NSMutableArray alloc] init];
    }
    ~ScreenLookup() override {
        method_setImplementation(_method, _original);
        [systemScreens release];
        systemScreens = nil;
    }

    NSScreen* add(NSRect frame, NSRect visible, int number = 7) {
        FixedScreen* const screen = [[FixedScreen alloc] initWithFrame:frame
                                                               visible:visible
                                                                number:number];
        [static_cast<NSMutableArray*>(systemScreens) addObject:screen];
        [screen release];
        return screen;
    }
    NSScreen* add(NSRect frame) { return add(frame, frame); }

    const ScopedARPool _pool;
    Method _method;
    IMP _original;
};

TEST_F(ScreenLookup, PrimaryDisplaysLowerLeftCornerIsTheOrigin) {
    add(NSMakeRect(0, 0, 1280, 1024), NSMakeRect(0, 40, 1280, 960));
    const Screen screen = Screen::getPrimaryScreen();
    EXPECT_EQ(screen.bounds, (Rectangle{0, -1024, 1280, 0}));
    EXPECT_EQ(screen.workingArea, (Rectangle{0, -1000, 1280, -40}));
    EXPECT_TRUE(screen.isPrimary);
    EXPECT_TRUE(screen.isValid);
    EXPECT_EQ(screen.bitsPerPixel, 24);
    EXPECT_EQ(screen.id, 0);
}

TEST_F(ScreenLookup, EachPartOfARectangleIsTruncatedForItself) {
    add(NSMakeRect(-10.7, 5.5, 100.9, 50.9));
    // -(5.5 + 50.9) is -56.4; the sizes are cut before they are added.
    EXPECT_EQ(Screen::getPrimaryScreen().bounds, (Rectangle{-10, -56, 90, -6}));
}

TEST_F(ScreenLookup, PointsOnAllFourEdgesBelongToTheDisplay) {
    add(NSMakeRect(0, 0, 100, 50));
    for (const Point& point : {Point{0, 0}, {100, 0}, {0, -50}, {100, -50}, {50, -25}})
        EXPECT_EQ(Screen::getScreenFromPoint(point).id, 0) << point.x << ", " << point.y;
    for (const Point& point : {Point{-1, 0}, {101, 0}, {0, 1}, {0, -51}})
        EXPECT_FALSE(Screen::getScreenFromPoint(point).isValid) << point.x << ", " << point.y;
}

TEST_F(ScreenLookup, PointOnTheCommonEdgeGoesToTheEarlierDisplay) {
    add(NSMakeRect(0, 0, 100, 50));
    add(NSMakeRect(100, 0, 100, 50));
    EXPECT_EQ(Screen::getScreenFromPoint({100, -10}).id, 0);
    EXPECT_EQ(Screen::getScreenFromPoint({101, -10}).id, 1);
    EXPECT_FALSE(Screen::getScreenFromPoint({101, -10}).isPrimary);
}

TEST_F(ScreenLookup, AreasAtAPointAreThoseOfItsDisplay) {
    add(NSMakeRect(0, 0, 100, 50), NSMakeRect(0, 0, 100, 40));
    add(NSMakeRect(100, 0, 100, 60), NSMakeRect(110, 0, 90, 60));
    EXPECT_EQ(Screen::getScreenBounds({150, -1}), (Rectangle{100, -60, 200, 0}));
    EXPECT_EQ(Screen::getScreenWorkingArea({150, -1}), (Rectangle{110, -60, 200, 0}));
    EXPECT_EQ(Screen::getScreenWorkingArea({100, -1}), (Rectangle{0, -40, 100, 0}));
    EXPECT_EQ(Screen::getScreenBounds({300, 0}), Rectangle());
    EXPECT_EQ(Screen::getScreenWorkingArea({300, 0}), Rectangle());
}

TEST_F(ScreenLookup, RectangleGoesToTheDisplayThatHasMostOfIt) {
    add(NSMakeRect(0, 0, 100, 50));
    add(NSMakeRect(100, 0, 100, 50));
    EXPECT_EQ(Screen::getScreenFromRect({60, -30, 141, -10}).id, 1);
    EXPECT_EQ(Screen::getScreenFromRect({59, -30, 140, -10}).id, 0);
    EXPECT_EQ(Screen::getScreenFromRect({150, -500, 160, 500}).id, 1);
}

TEST_F(ScreenLookup, RectangleHalfOnEachOfTwoDisplaysGoesToTheEarlierOne) {
    add(NSMakeRect(0, 0, 100, 50));
    add(NSMakeRect(100, 0, 100, 50));
    EXPECT_EQ(Screen::getScreenFromRect({60, -30, 140, -10}).id, 0);
}

TEST_F(ScreenLookup, RectangleOutsideEveryDisplayHasNone) {
    add(NSMakeRect(0, 0, 100, 50));
    for (const Rectangle& rectangle :
         {Rectangle{200, -30, 300, -10}, Rectangle{100, -30, 120, -10}, Rectangle{10, -20, 10, -10},
          Rectangle{}, Rectangle{30, -10, 20, -30}}) {
        const Screen screen = Screen::getScreenFromRect(rectangle);
        EXPECT_FALSE(screen.isValid);
        EXPECT_EQ(screen.id, -1);
    }
}

TEST_F(ScreenLookup, LargestRectangleOverflowsNothing) {
    add(NSMakeRect(0, 0, 100, 50));
    constexpr int most = std::numeric_limits<int>::max();
    constexpr int least = std::numeric_limits<int>::min();
    EXPECT_EQ(Screen::getScreenFromRect({least, least, most, most}).id, 0);
    EXPECT_FALSE(Screen::getScreenFromPoint({least, least}).isValid);
    EXPECT_FALSE(Screen::getScreenFromPoint({most, most}).isValid);
}

TEST_F(ScreenLookup, HandleIsTheSameObjectAndNotAnEqualOne) {
    NSScreen* const first = add(NSMakeRect(0, 0, 100, 50));
    NSScreen* const second = add(NSMakeRect(100, 0, 100, 50));
    ASSERT_TRUE([first isEqual:second]);
    EXPECT_EQ(Screen::getScreenFromHandle(second).id, 1);
    EXPECT_EQ(Screen::getScreenFromHandle(second).handle, second);
    EXPECT_FALSE(Screen::getScreenFromHandle(nullptr).isValid);
    EXPECT_FALSE(Screen::getScreenFromHandle(systemScreens).isValid);
}

TEST_F(ScreenLookup, AllScreensAreInTheSystemsOrder) {
    add(NSMakeRect(0, 0, 100, 50));
    add(NSMakeRect(-100, 0, 100, 50));
    const std::vector<Screen> screens = Screen::getAllScreens();
    ASSERT_EQ(screens.size(), 2u);
    EXPECT_TRUE(screens[0].isPrimary);
    EXPECT_FALSE(screens[1].isPrimary);
    EXPECT_EQ(screens[1].bounds.left, -100);
    EXPECT_EQ(screens[1].id, 1);
}

TEST_F(ScreenLookup, ScreenRetainsThePlatformsObjectAndReleasesIt) {
    NSScreen* const object = add(NSMakeRect(0, 0, 100, 50));
    const NSUInteger before = [object retainCount];
    {
        const Screen screen = Screen::getPrimaryScreen();
        EXPECT_EQ([object retainCount], before + 1);
        const Screen copy(screen);
        EXPECT_EQ([object retainCount], before + 2);
    }
    EXPECT_EQ([object retainCount], before);
}

TEST_F(ScreenLookup, DisplayIDIsTheNumberOfTheEntryWithTheIndex) {
    add(NSMakeRect(0, 0, 100, 50), NSZeroRect, 66);
    add(NSMakeRect(100, 0, 100, 50), NSZeroRect, 77);
    EXPECT_EQ(Screen::getPrimaryScreen().displayID(), 66);
    EXPECT_EQ(Screen::getScreenFromPoint({150, -1}).displayID(), 77);
}

TEST_F(ScreenLookup, DisplayIDOfAnIndexOutsideTheListLogsAnAssertion) {
    add(NSMakeRect(0, 0, 100, 50));
    const auto line =
        test::assertionLine("src/Mac/ScreenMac", 181, "id >= 0 && id < [screens count]");
    test::LogCapture log;
    EXPECT_EQ(Screen::invalidScreen().displayID(), 0);
    EXPECT_EQ(log.lines(), std::vector{line});
    const Screen gone({}, {}, 24, false, nullptr, 1, nullptr);
    EXPECT_EQ(gone.displayID(), 0);
    EXPECT_EQ(log.lines(), (std::vector{line, line}));
}

TEST_F(ScreenLookup, WithoutDisplaysEverythingIsInvalid) {
    EXPECT_FALSE(Screen::getPrimaryScreen().isValid);
    EXPECT_FALSE(Screen::getScreenFromPoint({0, 0}).isValid);
    EXPECT_FALSE(Screen::getScreenFromRect({-5, -5, 5, 5}).isValid);
    EXPECT_TRUE(Screen::getAllScreens().empty());
    EXPECT_EQ(Screen::getScreenBounds({0, 0}), Rectangle());
}

}  // namespace
}  // namespace tav::ula
