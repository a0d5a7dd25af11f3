// SPDX-License-Identifier: MIT
#include "tools/ula/ByteText.h"

#include <gtest/gtest.h>

namespace tav::tool {

namespace {

TEST(ByteText, SmallAmountsAreWholeBytes) {
    EXPECT_EQ(decimalByteText(0), "0 bytes");
    EXPECT_EQ(decimalByteText(999), "999 bytes");
    EXPECT_EQ(binaryByteText(1023), "1023 bytes");
}

TEST(ByteText, LargerOnesHaveOneDecimalPlace) {
    EXPECT_EQ(decimalByteText(1000), "1.0 kB");
    EXPECT_EQ(decimalByteText(16'777'216), "16.8 MB");
    EXPECT_EQ(binaryByteText(1024), "1.0 KiB");
    EXPECT_EQ(binaryByteText(16'777'216), "16.0 MiB");
}

TEST(ByteText, WhatIsRoundedUpTakesTheNextUnit) {
    EXPECT_EQ(decimalByteText(999'949), "999.9 kB");
    EXPECT_EQ(decimalByteText(999'999), "1.0 MB");
    EXPECT_EQ(decimalByteText(999'999'999'999), "1.0 TB");
    EXPECT_EQ(binaryByteText(1024 * 1024 - 1), "1.0 MiB");
}

TEST(ByteText, TheLargestUnitHoldsTheRest) {
    EXPECT_EQ(decimalByteText(UINT64_MAX), "18.4 EB");
    EXPECT_EQ(binaryByteText(UINT64_MAX), "16.0 EiB");
}

}  // namespace

}  // namespace tav::tool
