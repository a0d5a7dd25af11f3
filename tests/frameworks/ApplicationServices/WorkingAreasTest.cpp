// SPDX-License-Identifier: MIT
#include "ApplicationServices/WorkingAreas.h"

#include <gtest/gtest.h>

namespace displays {
namespace {

const Area kLeft{0, 0, 1280, 1024};
const Area kRight{1280, 0, 1024, 768};
using Areas = std::vector<Area>;

Desktop desktop() {
    Desktop made;
    made.width = 2304;
    made.height = 1024;
    return made;
}

/// What a panel at one edge tells.
Struts panel(std::size_t edge, Strut strut) {
    Struts struts;
    struts[edge] = strut;
    return struts;
}

TEST(WorkingAreas, WithoutPanelsTheyAreTheDisplays) {
    EXPECT_EQ(workingAreas({kLeft, kRight}, desktop()), (Areas{kLeft, kRight}));
}

TEST(WorkingAreas, OfOneDisplayIsThatOfTheWindowManager) {
    Desktop shown = desktop();
    shown.area = {0, 24, 2304, 1000};
    EXPECT_EQ(workingAreas({kLeft}, shown), (Areas{{0, 24, 1280, 1000}}));
}

TEST(WorkingAreas, OfSeveralDisplaysIsNotTheCommonOne) {
    Desktop shown = desktop();
    shown.area = {0, 24, 2304, 744};
    EXPECT_EQ(workingAreas({kLeft, kRight}, shown), (Areas{kLeft, kRight}));
}

TEST(WorkingAreas, ThoseOfTheDesktopCount) {
    Desktop shown = desktop();
    shown.areas = {{1280, 0, 1024, 768}, {64, 32, 1216, 992}};
    EXPECT_EQ(workingAreas({kLeft, kRight}, shown),
              (Areas{{64, 32, 1216, 992}, {1280, 0, 1024, 768}}));
}

TEST(WorkingAreas, AreaOutsideTheDisplayIsNone) {
    Desktop shown = desktop();
    shown.area = {5000, 0, 100, 100};
    EXPECT_EQ(workingAreas({kLeft}, shown), (Areas{kLeft}));
}

TEST(WorkingAreas, PanelsReserveOnTheirOwnDisplayOnly) {
    Desktop shown = desktop();
    shown.panels = {panel(2, {30, 0, 1279})};
    EXPECT_EQ(workingAreas({kLeft, kRight}, shown), (Areas{{0, 30, 1280, 994}, kRight}));
    shown.panels = {panel(0, {64, 0, 1023})};
    EXPECT_EQ(workingAreas({kLeft, kRight}, shown), (Areas{{64, 0, 1216, 1024}, kRight}));
    shown.panels = {panel(1, {50, 0, 767})};
    EXPECT_EQ(workingAreas({kLeft, kRight}, shown), (Areas{kLeft, {1280, 0, 974, 768}}));
}

TEST(WorkingAreas, PanelBelowAShorterDisplayIsMeasuredFromTheDesktopsEdge) {
    Desktop shown = desktop();
    shown.panels = {panel(3, {256 + 40, 1280, 2303})};
    EXPECT_EQ(workingAreas({kLeft, kRight}, shown), (Areas{kLeft, {1280, 0, 1024, 728}}));
}

TEST(WorkingAreas, PanelAtAnInnerEdgeLeavesTheDisplaysBeforeItAlone) {
    Desktop shown = desktop();
    shown.panels = {panel(0, {1280 + 64, 0, 767})};
    // The tall display is not covered whole, but the way to the panel is as wide as it.
    EXPECT_EQ(workingAreas({{0, 0, 1280, 768}, kRight}, shown),
              (Areas{{0, 0, 1280, 768}, {1344, 0, 960, 768}}));
}

TEST(WorkingAreas, SeveralPanelsAddUp) {
    Desktop shown = desktop();
    shown.panels = {panel(2, {30, 0, 1279}), panel(3, {40, 0, 1279}), panel(0, {60, 0, 1023})};
    EXPECT_EQ(workingAreas({kLeft}, shown), (Areas{{60, 30, 1220, 954}}));
}

TEST(WorkingAreas, PanelThatClaimsEverythingGetsNothing) {
    Desktop shown = desktop();
    shown.panels = {panel(2, {4000, 0, 4000}), panel(3, {-5, 10, 0})};
    EXPECT_EQ(workingAreas({kLeft}, shown), (Areas{kLeft}));
}

}  // namespace
}  // namespace displays
