// SPDX-License-Identifier: MIT
#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

extern "C" CFIndex lengthFromC(void);

TEST(CoreFoundationHeaders, PlainCAndPlainCppMayUseThem) {
    EXPECT_EQ(lengthFromC(), 6);
    EXPECT_EQ(CFStringGetLength(CFSTR("from C++")), 8);
}
