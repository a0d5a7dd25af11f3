// SPDX-License-Identifier: MIT
#include "ApplicationServices/XProperties.h"

#include <gtest/gtest.h>

namespace displays {
namespace {

TEST(Scale, IsTheResolutionByNinetySix) {
    EXPECT_EQ(scaleFrom("Xft.dpi:\t192\n"), 2);
    EXPECT_EQ(scaleFrom("*foreground: black\nXft.dpi: 120\nXft.hinting: 1\n"), 1.25);
}

TEST(Scale, IsOneWhereNothingUsefulIsSaid) {
    for (const char* text : {"", "Xft.dpi:", "Xft.dpi: many", "Xft.dpi: 0", "Xft.dpi: -96",
                             "Xft.dpi: 1e9", "xXft.dpi: 192", "Xft.dpi2: 192"})
        EXPECT_EQ(scaleFrom(text), 1) << text;
}

}  // namespace
}  // namespace displays
