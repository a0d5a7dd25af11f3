// SPDX-License-Identifier: MIT
#include "tools/ula/Translation.h"

#include <gtest/gtest.h>

namespace tav::tool {

namespace {

TEST(Translation, FillsInValuesInAnyOrder) {
    EXPECT_EQ(filled("%2 of %1 is %2", {"a", "b"}), "b of a is b");
    EXPECT_EQ(filled("%1%1", {"%1"}), "%1%1");
    EXPECT_EQ(filled("", {"a"}), "");
}

TEST(Translation, LeavesWhatIsNoPlaceAsItIs) {
    EXPECT_EQ(filled("100 % %Y %3 %0 %", {"a", "b"}), "100 % %Y %3 %0 %");
    EXPECT_EQ(translated("%Y and %1"), "%Y and %1");
}

TEST(Translation, IsTheTextItselfBeforeALanguageIsChosen) {
    EXPECT_EQ(translated("there is no device \"%1\"", std::string("x")),
              "there is no device \"x\"");
}

}  // namespace

}  // namespace tav::tool
