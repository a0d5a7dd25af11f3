// SPDX-License-Identifier: MIT
#include "ApplicationServices/Changes.h"
#include "ApplicationServices/CGDisplayConfiguration.h"

#include <gtest/gtest.h>

namespace displays {
namespace {

constexpr std::uint32_t kAdded =
    kCGDisplayAddFlag | kCGDisplayEnabledFlag | kCGDisplayDesktopShapeChangedFlag;
constexpr std::uint32_t kRemoved =
    kCGDisplayRemoveFlag | kCGDisplayDisabledFlag | kCGDisplayDesktopShapeChangedFlag;

Display display(std::uint32_t id, Area frame) {
    Display made;
    made.id = id;
    made.frame = frame;
    made.workingArea = frame;
    made.bitsPerPixel = 24;
    made.refreshRate = 60;
    return made;
}

const Display kFirst = display(1, {0, 0, 1280, 1024});
const Display kSecond = display(2, {1280, 0, 1024, 768});

using List = std::vector<Change>;

TEST(DisplayChanges, NothingIsChangedBetweenEqualLists) {
    EXPECT_EQ(changesBetween({kFirst, kSecond}, {kFirst, kSecond}), List());
    EXPECT_EQ(changesBetween({}, {}), List());
}

TEST(DisplayChanges, OneThatComesIsAdded) {
    EXPECT_EQ(changesBetween({kFirst}, {kFirst, kSecond}), (List{{2, kAdded}}));
}

TEST(DisplayChanges, FirstOneBecomesTheMainOne) {
    EXPECT_EQ(changesBetween({}, {kFirst, kSecond}),
              (List{{1, kAdded | kCGDisplaySetMainFlag}, {2, kAdded}}));
}

TEST(DisplayChanges, OneThatGoesIsRemovedBeforeOthersAreTold) {
    Display moved = kSecond;
    moved.frame = {0, 0, 1024, 768};
    EXPECT_EQ(changesBetween({kFirst, kSecond}, {moved}),
              (List{{1, kRemoved},
                    {2, kCGDisplayMovedFlag | kCGDisplayDesktopShapeChangedFlag |
                            kCGDisplaySetMainFlag}}));
}

TEST(DisplayChanges, SizeRateAndDepthAreTheMode) {
    Display resized = kFirst;
    resized.frame.height = 960;
    EXPECT_EQ(changesBetween({kFirst}, {resized}),
              (List{{1, kCGDisplaySetModeFlag | kCGDisplayDesktopShapeChangedFlag}}));
    Display faster = kFirst;
    faster.refreshRate = 144;
    EXPECT_EQ(changesBetween({kFirst}, {faster}), (List{{1, kCGDisplaySetModeFlag}}));
    Display deeper = kFirst;
    deeper.bitsPerPixel = 30;
    EXPECT_EQ(changesBetween({kFirst}, {deeper}), (List{{1, kCGDisplaySetModeFlag}}));
}

TEST(DisplayChanges, WorkingAreaAndScaleAreNoConfiguration) {
    Display other = kFirst;
    other.workingArea.height -= 40;
    other.scale = 2;
    EXPECT_EQ(changesBetween({kFirst}, {other}), List());
}

}  // namespace
}  // namespace displays
