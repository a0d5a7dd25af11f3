// SPDX-License-Identifier: MIT
#include "SystemProfiler/PciNames.h"

#include <gmock/gmock.h>

namespace {

using namespace systemprofiler;

const std::string kList = "\n# comment\n"
                          "1002  First Maker\n"
                          "\t0001  First's One\n"
                          "\t\t8086 1912  a subsystem\n"
                          "# between\n"
                          "\t0002  First's Two\n"
                          "8086  Second Maker\n"
                          "\t0003  Second's Three\n"
                          "C 03  Display controller\n"
                          "\t00  VGA compatible controller\n";

TEST(PciNames, AreMakerAndDevice) {
    EXPECT_EQ(pciNameInList({0x1002, 1}, kList), "First Maker First's One");
    EXPECT_EQ(pciNameInList({0x1002, 2}, kList), "First Maker First's Two");
    EXPECT_EQ(pciNameInList({0x8086, 3}, kList), "Second Maker Second's Three");
}

TEST(PciNames, OfAnotherMakerAreNotTaken) {
    EXPECT_EQ(pciNameInList({0x1002, 3}, kList), "First Maker 1002:0003");
    EXPECT_EQ(pciNameInList({0x8086, 0x1912}, kList), "Second Maker 8086:1912");
}

TEST(PciNames, OfUnknownMakersAreNone) {
    EXPECT_EQ(pciNameInList({0x1111, 1}, kList), "");
    EXPECT_EQ(pciNameInList({0x1111, 1}, ""), "");
    EXPECT_EQ(pciNameInList({0x8086, 1}, "\n8086  Cut"), "Cut 8086:0001");
}

TEST(PciNames, WithoutAListSayTheMakerOfMost) {
    EXPECT_EQ(pciName({0x8086, 0x1912}, "/nonexistent"), "Intel graphics 8086:1912");
    EXPECT_EQ(pciName({0x9999, 0x1}, "/nonexistent"), "graphics 9999:0001");
}

TEST(PciNames, AreFoundOnThisSystem) {
    EXPECT_THAT(pciName({0x8086, 0x1912}), testing::HasSubstr("HD Graphics 530"));
}

}  // namespace
