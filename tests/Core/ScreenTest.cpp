// SPDX-License-Identifier: MIT
// Screens as values: what keeps their handles.
#include "ula/Screen.h"

#include <gtest/gtest.h>
#include <utility>

namespace tav::ula {
namespace {

/// An object that counts.
struct Object {
    int retained = 0;
    int released = 0;
};

ScreenRetainer counting{[](void* handle) { ++static_cast<Object*>(handle)->retained; },
                        [](void* handle) { ++static_cast<Object*>(handle)->released; }};

Screen screenOf(Object& object) {
    return Screen({0, -10, 20, 0}, {0, -8, 20, 0}, 24, true, &object, 3, &counting);
}

void expectInvalid(const Screen& screen) {
    EXPECT_EQ(screen.bounds, math::GenRect<int>());
    EXPECT_EQ(screen.workingArea, math::GenRect<int>());
    EXPECT_FALSE(screen.isPrimary);
    EXPECT_FALSE(screen.isValid);
    EXPECT_EQ(screen.bitsPerPixel, 0);
    EXPECT_EQ(screen.handle, nullptr);
    EXPECT_EQ(screen.id, -1);
}

TEST(ScreenTest, InvalidScreenIsEmpty) {
    expectInvalid(Screen());
    expectInvalid(Screen::invalidScreen());
}

TEST(ScreenTest, InvalidScreensCanBeCopied) {
    Screen copy = Screen::invalidScreen();
    copy = Screen(copy);
    expectInvalid(copy);
}

TEST(ScreenTest, KeepsWhatItIsMadeOf) {
    Object object;
    const Screen screen = screenOf(object);
    EXPECT_EQ(screen.bounds, (math::GenRect<int>{0, -10, 20, 0}));
    EXPECT_EQ(screen.workingArea, (math::GenRect<int>{0, -8, 20, 0}));
    EXPECT_TRUE(screen.isPrimary);
    EXPECT_TRUE(screen.isValid);
    EXPECT_EQ(screen.bitsPerPixel, 24);
    EXPECT_EQ(screen.handle, &object);
    EXPECT_EQ(screen.id, 3);
}

TEST(ScreenTest, IsRetainedOnceAndReleasedAtTheEnd) {
    Object object;
    {
        const Screen screen = screenOf(object);
        EXPECT_EQ(object.retained, 1);
        EXPECT_EQ(object.released, 0);
    }
    EXPECT_EQ(object.retained, 1);
    EXPECT_EQ(object.released, 1);
}

TEST(ScreenTest, CopyRetainsOnceMoreAndBothRelease) {
    Object object;
    {
        const Screen screen = screenOf(object);
        const Screen copy(screen);
        EXPECT_EQ(object.retained, 2);
        EXPECT_EQ(copy.handle, screen.handle);
        EXPECT_EQ(copy.id, 3);
    }
    EXPECT_EQ(object.released, 2);
}

TEST(ScreenTest, AssignmentReleasesWhatWasThereBefore) {
    Object first;
    Object second;
    Screen screen = screenOf(first);
    const Screen other = screenOf(second);
    screen = other;
    EXPECT_EQ(first.released, 1);
    EXPECT_EQ(second.retained, 2);
    EXPECT_EQ(second.released, 0);
    EXPECT_EQ(screen.handle, &second);
}

TEST(ScreenTest, AssignmentTakesTheRetainerToo) {
    Object object;
    {
        Screen screen;
        screen = screenOf(object);
        EXPECT_EQ(object.retained - object.released, 1);
    }
    EXPECT_EQ(object.retained, object.released);
    {
        Screen screen = screenOf(object);
        screen = Screen();
        EXPECT_EQ(object.retained, object.released);
    }
    EXPECT_EQ(object.retained, object.released);
}

TEST(ScreenTest, AssignedToItselfItKeepsItsHandle) {
    Object object;
    Screen screen = screenOf(object);
    Screen& same = screen;
    screen = same;
    EXPECT_EQ(object.retained - object.released, 1);
    EXPECT_EQ(screen.handle, &object);
}

TEST(ScreenTest, WithoutARetainerTheHandleIsOnlyStored) {
    Object object;
    {
        const Screen screen({}, {}, 24, false, &object, 0, nullptr);
        const Screen copy(screen);
        EXPECT_EQ(copy.handle, &object);
        EXPECT_TRUE(copy.isValid);
    }
    EXPECT_EQ(object.retained, 0);
    EXPECT_EQ(object.released, 0);
}

}  // namespace
}  // namespace tav::ula
