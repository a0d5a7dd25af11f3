// SPDX-License-Identifier: MIT
#include "ula/foundation/text/NumberConversion.h"

#include "tests/support/TemporaryFolder.h"

#include <bit>
#include <clocale>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace tav::text {
namespace {

TEST(NumberConversionTest, IntsHaveTheirTextInAnyBase) {
    EXPECT_EQ(itostr(0, 10), "0");
    EXPECT_EQ(itostr(-2147483647 - 1, 10), "-2147483648");
    EXPECT_EQ(itostr(255, 16), "ff");
    EXPECT_EQ(itostr(-1, 2), "-1");
    EXPECT_EQ(itostr(std::numeric_limits<int>::min(), 2), "-1" + std::string(31, '0'));
    EXPECT_EQ(itostr(1, 1), "");
}

TEST(NumberConversionTest, DoublesHaveTheShortestTextThatReadsBack) {
    EXPECT_EQ(dtostr(0.1), "0.1");
    EXPECT_EQ(dtostr(1e300), "1e+300");
    EXPECT_EQ(dtostr(-0.0), "-0");
    EXPECT_EQ(dtostr(800), "800");
    EXPECT_EQ(dtostr(std::numeric_limits<double>::infinity()), "inf");
    EXPECT_EQ(dtostr(std::numeric_limits<double>::quiet_NaN()), "nan");
}

TEST(NumberConversionTest, AMillionDoublesKeepTheirBits) {
    std::mt19937_64 random(11);
    for (int i = 0; i < 1'000'000; ++i) {
        const std::uint64_t bits = random();
        double back = 0;
        ASSERT_TRUE(parseDouble(dtostr(std::bit_cast<double>(bits)), back)) << bits;
        ASSERT_EQ(std::bit_cast<std::uint64_t>(back), bits);
    }
}

TEST(NumberConversionTest, ThePointIsThePointWhateverTheLocale) {
    const test::TemporaryFolder folder;
    const std::string command = "localedef -i de_DE -f UTF-8 " + (folder / "de_DE.UTF-8");
    ASSERT_EQ(std::system(command.c_str()), 0);
    setenv("LOCPATH", folder.path().c_str(), 1);
    ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr);
    ASSERT_EQ(std::strtod("1,5", nullptr), 1.5);  // the locale is at work
    EXPECT_EQ(dtostr(1.5), "1.5");
    EXPECT_EQ(strtod("1.5", LocaleIndependent), 1.5);
    double untouched = 7;
    EXPECT_FALSE(parseDouble("1,5", untouched));
    EXPECT_EQ(untouched, 7);
    std::setlocale(LC_ALL, "C");
}

TEST(NumberConversionTest, TextsThatAreNoIntAreRefusedAndLeaveTheResult) {
    for (const char* text :
         {"", " ", "x", "1x", "1.0", "2147483648", "-2147483649", "+-1", "+", "0x1", "1 2"}) {
        int result = 42;
        EXPECT_FALSE(parseInt(text, result)) << text;
        EXPECT_EQ(result, 42);
    }
    int result = 0;
    EXPECT_TRUE(parseInt(" \t+12\n", result));
    EXPECT_EQ(result, 12);
    EXPECT_TRUE(parseInt("-2147483648", result));
}

TEST(NumberConversionTest, DoublesOutOfRangeAreRefused) {
    double result = 42;
    for (const char* text : {"1e999", "-1e999", "1e-999", "", "abc", "1.5.", "nan(", "nan(0x1)",
                             "nan(0x7ff8000000000001"}) {
        EXPECT_FALSE(parseDouble(text, result)) << text;
        EXPECT_EQ(strtod(text, LocaleIndependent), 0);
    }
    EXPECT_EQ(result, 42);
    EXPECT_TRUE(parseDouble("5e-324", result));
}

TEST(NumberConversionTest, UnsignedNumbersReadInTheirRange) {
    EXPECT_EQ(strtoui64("18446744073709551615", 10), UINT64_MAX);
    EXPECT_EQ(strtoui64("18446744073709551616", 10), 0U);
    EXPECT_EQ(strtoui64("-1", 10), 0U);
    EXPECT_EQ(strtoui64("ff", 16), 255U);
    EXPECT_EQ(strtoui64("1", 99), 0U);
}

}  // namespace
}  // namespace tav::text
