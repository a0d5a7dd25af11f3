// SPDX-License-Identifier: MIT
// ULATime::fromShootingDateString.
#include "ula/ULATime.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <random>
#include <string>

namespace tav::ula {

namespace {

std::string fieldsOf(std::string_view text) {
    return ULATime::fromShootingDateString(text).toString();
}

std::string fields(const ULATimeStruct& values) {
    return ULATime(values).toString();
}

/// As the documented steps have it, with the C library's atoi.
std::string fieldsByTheSteps(const std::string& text) {
    auto piece = [&text](std::size_t begin, std::size_t length) {
        return static_cast<std::uint32_t>(std::atoi(text.substr(begin, length).c_str()));
    };
    if (text.size() < 19)
        return ULATime().toString();
    const std::uint32_t millisecond = text.size() > 21 ? piece(19, 2) : 0;
    return ULATime(piece(0, 4), piece(5, 2), piece(8, 2), piece(11, 2), piece(14, 2), piece(17, 2),
                   millisecond)
        .toString();
}

TEST(ShootingDateString, CamerasTextIsRead) {
    EXPECT_EQ(fieldsOf("2009:03:15 10:20:30"), fields({2009, 3, 15, 0, 10, 20, 30, 0}));
}

TEST(ShootingDateString, TextOf18CharactersGivesAllZeros) {
    EXPECT_EQ(fieldsOf("2009:03:15 10:20:3"), fields({}));
    EXPECT_EQ(fieldsOf(""), fields({}));
}

TEST(ShootingDateString, TextOf19To21CharactersHasNoMilliseconds) {
    const std::string expected = fields({2009, 3, 15, 0, 10, 20, 30, 0});
    EXPECT_EQ(fieldsOf("2009:03:15 10:20:30"), expected);
    EXPECT_EQ(fieldsOf("2009:03:15 10:20:301"), expected);
    EXPECT_EQ(fieldsOf("2009:03:15 10:20:3012"), expected);
}

TEST(ShootingDateString, TextOf22CharactersHasTheTwoAfterTheSecondsAsMilliseconds) {
    EXPECT_EQ(fieldsOf("2009:03:15 10:20:30123"), fields({2009, 3, 15, 0, 10, 20, 30, 12}));
    EXPECT_EQ(fieldsOf("2009:03:15 10:20:3098765"), fields({2009, 3, 15, 0, 10, 20, 30, 98}));
}

TEST(ShootingDateString, PointAfterTheSecondsGivesNoMilliseconds) {
    EXPECT_EQ(fieldsOf("2009:03:15 10:20:30.45"), fields({2009, 3, 15, 0, 10, 20, 30, 0}));
}

TEST(ShootingDateString, SignAfterTheSecondsIsOneOfANumber) {
    EXPECT_EQ(ULATime::fromShootingDateString("2009:03:15 10:20:30+12:00").milliOfSecond, 1u);
    const ULATime behind = ULATime::fromShootingDateString("2009:03:15 10:20:30-11:00");
    EXPECT_EQ(behind.milliOfSecond, 4294967295u);
    EXPECT_FALSE(behind.weakValidationCheck());
}

TEST(ShootingDateString, SeparatorsAreNeverLookedAt) {
    const std::string expected = fieldsOf("2009:03:15 10:20:30");
    EXPECT_EQ(fieldsOf("2009-03-15T10:20:30"), expected);
    EXPECT_EQ(fieldsOf("2009103215310420530"), expected);
    EXPECT_EQ(fieldsOf(std::string("2009\0"
                                   "03\0"
                                   "15\0"
                                   "10\0"
                                   "20\0"
                                   "30",
                                   19)),
              expected);
}

TEST(ShootingDateString, Month13IsJanuaryOfTheNextYear) {
    EXPECT_EQ(fieldsOf("2009:13:01 00:00:00"), fields({2010, 1, 1, 5, 0, 0, 0, 0}));
}

TEST(ShootingDateString, PiecesAreConvertedAsByAtoi) {
    EXPECT_EQ(fieldsOf(" 900: 3:+5 1x: 2: 3"), fields({900, 3, 5, 5, 1, 2, 3, 0}));
    EXPECT_EQ(fieldsOf("+900:\t3:\n5 \v1:\f2:\r3"), fields({900, 3, 5, 5, 1, 2, 3, 0}));
    EXPECT_EQ(fieldsOf("20 9:03:15 10:20:30"), fieldsOf("0020:03:15 10:20:30"));
}

TEST(ShootingDateString, NegativePiecesCountBack) {
    EXPECT_EQ(fieldsOf("2009:-1:01 00:00:00"), fields({2008, 11, 1, 6, 0, 0, 0, 0}));
    EXPECT_EQ(fieldsOf("2009:01:01 -1:00:00"), fields({2008, 12, 31, 3, 23, 0, 0, 0}));
}

TEST(ShootingDateString, GarbageIsNotValid) {
    for (const char* text : {"0000:00:00 00:00:00", "    :  :     :  :  ",
                             "garbage, garbage, garbage", "-001:01:01 00:00:00",
                             "\xff\xfe\xff\xff\xff\xff\xff\xff\xff\xff\xff"
                             "\xff\xff\xff\xff\xff\xff\xff\xff"})
        EXPECT_FALSE(ULATime::fromShootingDateString(text).weakValidationCheck()) << text;
}

TEST(ShootingDateString, AnyBytesAreReadByTheSteps) {
    constexpr std::string_view kAlphabet = "0123456789012345678901234567890123456789 +-:.\t\rx\0"
                                           "\xc3"
                                           "T";
    std::mt19937 random(4);
    for (int i = 0; i < 200'000; ++i) {
        std::string text = "2009:03:15 10:20:30";
        text.resize(17 + random() % 8, '7');
        for (std::size_t change = random() % 12; change > 0; --change)
            text[random() % text.size()] = kAlphabet[random() % kAlphabet.size()];
        ASSERT_EQ(fieldsOf(text), fieldsByTheSteps(text)) << text;
    }
}

}  // namespace

}  // namespace tav::ula
