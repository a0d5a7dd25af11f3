// SPDX-License-Identifier: MIT
#include "ula/ULATime.h"

#include <gtest/gtest.h>
#include <type_traits>

namespace tav::ula {

namespace {

const ULATime kSunday(ULATimeStruct(2009, 3, 15, 0, 10, 20, 30, 0));

void expectFields(const ULATime& time, const ULATimeStruct& fields) {
    EXPECT_EQ(time.toString(), ULATime(fields).toString());
}

/// A field of the record.
using Field = std::uint32_t ULATimeStruct::*;

/// In the order in which they count.
constexpr Field kOrder[] = {&ULATimeStruct::year,         &ULATimeStruct::monthOfYear,
                            &ULATimeStruct::dayOfMonth,   &ULATimeStruct::hourOfDay,
                            &ULATimeStruct::minuteOfHour, &ULATimeStruct::secondOfMinute,
                            &ULATimeStruct::milliOfSecond};

ULATime with(Field field, std::uint32_t value) {
    ULATime time = kSunday;
    time.*field = value;
    return time;
}

void expectEarlier(const ULATime& earlier, const ULATime& later) {
    EXPECT_EQ(earlier.compare(later), -1);
    EXPECT_EQ(later.compare(earlier), 1);
    EXPECT_TRUE(earlier < later && earlier <= later && earlier != later);
    EXPECT_TRUE(later > earlier && later >= earlier);
    EXPECT_FALSE(earlier > later || earlier >= later || earlier == later);
    EXPECT_FALSE(later < earlier || later <= earlier);
}

void expectEqual(const ULATime& left, const ULATime& right) {
    EXPECT_EQ(left.compare(right), 0);
    EXPECT_TRUE(left == right && left <= right && left >= right);
    EXPECT_FALSE(left != right || left < right || left > right);
}

TEST(ULATime, DefaultConstructedIsAllZeroAndNotValid) {
    expectFields(ULATime(), {0, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_FALSE(ULATime().weakValidationCheck());
    expectFields(ULATimeStruct(), {0, 0, 0, 0, 0, 0, 0, 0});
}

TEST(ULATime, StructIsStoredUnchangedWhateverItHolds) {
    const ULATimeStruct fields(1, 99, 4294967295u, 8, 25, 61, 62, 1001);
    EXPECT_EQ(fields.year, 1u);
    EXPECT_EQ(fields.monthOfYear, 99u);
    EXPECT_EQ(fields.dayOfMonth, 4294967295u);
    EXPECT_EQ(fields.dayOfWeek, 8u);
    EXPECT_EQ(fields.hourOfDay, 25u);
    EXPECT_EQ(fields.minuteOfHour, 61u);
    EXPECT_EQ(fields.secondOfMinute, 62u);
    EXPECT_EQ(fields.milliOfSecond, 1001u);
    expectFields(ULATime(fields), fields);
}

TEST(ULATime, StructFilledFieldByFieldBecomesATime) {
    ULATimeStruct fields;
    fields.year = 2009;
    fields.monthOfYear = 3;
    fields.dayOfMonth = 15;
    const ULATime time = fields;
    EXPECT_EQ(time, ULATime(2009, 3, 15, 0, 0, 0, 0));
}

TEST(ULATime, IsAPlainValue) {
    static_assert(std::is_trivially_copyable_v<ULATime>);
    ULATime copy = kSunday;
    copy.year = 2010;
    EXPECT_EQ(kSunday.year, 2009u);
    copy = kSunday;
    EXPECT_EQ(copy, kSunday);
}

TEST(ULATime, SevenComponentsGetTheirDayOfTheWeek) {
    expectFields(ULATime(2009, 3, 15, 10, 20, 30, 0), kSunday);
    expectFields(ULATime(2009, 3, 14, 0, 0, 0, 7), {2009, 3, 14, 6, 0, 0, 0, 7});
    expectFields(ULATime(1970, 1, 1, 0, 0, 0, 0), {1970, 1, 1, 4, 0, 0, 0, 0});
    expectFields(ULATime(2200, 1, 1, 23, 59, 59, 999), {2200, 1, 1, 3, 23, 59, 59, 999});
    expectFields(ULATime(1, 1, 1, 0, 0, 0, 0), {1, 1, 1, 1, 0, 0, 0, 0});
}

TEST(ULATime, ComponentsOutOfRangeAreCarried) {
    expectFields(ULATime(2009, 13, 1, 0, 0, 0, 0), {2010, 1, 1, 5, 0, 0, 0, 0});
    expectFields(ULATime(2009, 2, 31, 0, 0, 0, 0), {2009, 3, 3, 2, 0, 0, 0, 0});
    expectFields(ULATime(2009, 2, 29, 25, 61, 61, 0), {2009, 3, 2, 1, 2, 2, 1, 0});
    expectFields(ULATime(2008, 2, 29, 24, 0, 0, 0), {2008, 3, 1, 6, 0, 0, 0, 0});
    expectFields(ULATime(2009, 12, 31, 23, 59, 60, 0), {2010, 1, 1, 5, 0, 0, 0, 0});
    expectFields(ULATime(9999, 12, 31, 23, 59, 60, 0), {10000, 1, 1, 6, 0, 0, 0, 0});
}

TEST(ULATime, MonthZeroIsTheDecemberBeforeAndDayZeroTheDayBefore) {
    expectFields(ULATime(2009, 0, 1, 0, 0, 0, 0), {2008, 12, 1, 1, 0, 0, 0, 0});
    expectFields(ULATime(2009, 1, 0, 0, 0, 0, 0), {2008, 12, 31, 3, 0, 0, 0, 0});
}

TEST(ULATime, MillisecondsAreKeptUnchanged) {
    EXPECT_EQ(ULATime(2009, 3, 15, 10, 20, 30, 1000).milliOfSecond, 1000u);
    EXPECT_EQ(ULATime(2009, 3, 15, 10, 20, 30, 4294967295u).milliOfSecond, 4294967295u);
    EXPECT_EQ(ULATime(2009, 3, 15, 10, 20, 30, 1000).secondOfMinute, 30u);
}

TEST(ULATime, BeforeTheCommonEraTheYearIsZeroAndNotValid) {
    expectFields(ULATime(0, 1, 1, 0, 0, 0, 0), {0, 1, 1, 6, 0, 0, 0, 0});
    expectFields(ULATime(0, 0, 0, 0, 0, 0, 0), {0, 11, 30, 2, 0, 0, 0, 0});
    expectFields(ULATime(1, 1, 0, 0, 0, 0, 0), {0, 12, 31, 0, 0, 0, 0, 0});
    EXPECT_FALSE(ULATime(0, 0, 0, 0, 0, 0, 0).weakValidationCheck());
    expectFields(ULATime(0, 13, 1, 0, 0, 0, 0), {1, 1, 1, 1, 0, 0, 0, 0});
}

TEST(ULATime, NumbersThatAreNegativeAsIntCountBack) {
    const auto minusOne = static_cast<std::uint32_t>(-1);
    expectFields(ULATime(2009, 1, 1, minusOne, 0, 0, 0), {2008, 12, 31, 3, 23, 0, 0, 0});
    expectFields(ULATime(2009, minusOne, 1, 0, 0, 0, 0), {2008, 11, 1, 6, 0, 0, 0, 0});
    EXPECT_EQ(ULATime(minusOne, 1, 1, 0, 0, 0, 0).year, 0u);
}

TEST(ULATime, HugeComponentsHaveAnAnswer) {
    EXPECT_EQ(ULATime(2147483647u, 2147483647u, 1, 0, 0, 0, 0).year, 2326440617u);
    EXPECT_EQ(ULATime(2009, 1, 1, 0, 0, 2147483647u, 0).year, 2077u);
}

TEST(ULATime, TimesDifferingOnlyInDayOfWeekAreEqual) {
    expectEqual(kSunday, with(&ULATimeStruct::dayOfWeek, 3));
    expectEqual(kSunday, with(&ULATimeStruct::dayOfWeek, 4294967295u));
}

TEST(ULATime, TimesDifferingOnlyInMilliOfSecondAreNotEqual) {
    expectEarlier(kSunday, with(&ULATimeStruct::milliOfSecond, 1));
}

TEST(ULATime, EachFieldCountsAsAnUnsignedNumber) {
    for (Field field : kOrder) {
        expectEarlier(with(field, 1), with(field, 2));
        expectEarlier(with(field, 2), with(field, 2147483648u));
        expectEarlier(with(field, 2147483647u), with(field, 4294967295u));
        expectEqual(with(field, 7), with(field, 7));
    }
}

TEST(ULATime, FirstFieldThatDiffersDecides) {
    for (std::size_t first = 0; first < std::size(kOrder); ++first) {
        ULATime earlier = with(kOrder[first], 1);
        ULATime later = with(kOrder[first], 2);
        for (std::size_t rest = first + 1; rest < std::size(kOrder); ++rest) {
            earlier.*kOrder[rest] = 9;
            later.*kOrder[rest] = 0;
        }
        expectEarlier(earlier, later);
    }
}

TEST(ULATime, WeakValidationAcceptsThe31stOfFebruary) {
    EXPECT_TRUE(ULATime(ULATimeStruct(2009, 2, 31, 0, 0, 0, 0, 0)).weakValidationCheck());
}

TEST(ULATime, WeakValidationRejectsMilliOfSecond1000AndDayOfWeek7) {
    EXPECT_FALSE(with(&ULATimeStruct::milliOfSecond, 1000).weakValidationCheck());
    EXPECT_FALSE(with(&ULATimeStruct::dayOfWeek, 7).weakValidationCheck());
}

TEST(ULATime, WeakValidationHoldsEachFieldAgainstItsRange) {
    struct Range {
        Field field;
        std::uint32_t least;
        std::uint32_t most;
    };
    constexpr std::uint32_t kMost = 4294967295u;
    const Range ranges[] = {
        {&ULATimeStruct::year, 1, kMost},        {&ULATimeStruct::monthOfYear, 1, 12},
        {&ULATimeStruct::dayOfMonth, 1, 31},     {&ULATimeStruct::dayOfWeek, 0, 6},
        {&ULATimeStruct::hourOfDay, 0, 23},      {&ULATimeStruct::minuteOfHour, 0, 59},
        {&ULATimeStruct::secondOfMinute, 0, 59}, {&ULATimeStruct::milliOfSecond, 0, 999}};
    for (const Range& range : ranges) {
        EXPECT_TRUE(with(range.field, range.least).weakValidationCheck());
        EXPECT_TRUE(with(range.field, range.most).weakValidationCheck());
        EXPECT_FALSE(range.least > 0 && with(range.field, range.least - 1).weakValidationCheck());
        EXPECT_FALSE(range.most < kMost && with(range.field, range.most + 1).weakValidationCheck());
    }
}

TEST(ULATime, ToStringPrintsEightLines) {
    EXPECT_EQ(kSunday.toString(), "year: 2009\nmonthOfYear: 3\ndayOfMonth: 15\ndayOfWeek: 0\n"
                                  "hourOfDay: 10\nminuteOfHour: 20\nsecondOfMinute: 30\n"
                                  "milliOfSecond: 0\n");
}

TEST(ULATime, ToStringPrintsFieldsAsUnsignedNumbers) {
    constexpr std::uint32_t kMost = 4294967295u;
    const ULATime time(ULATimeStruct(kMost, kMost, kMost, kMost, kMost, kMost, kMost, kMost));
    EXPECT_EQ(time.toString(),
              "year: 4294967295\nmonthOfYear: 4294967295\ndayOfMonth: 4294967295\n"
              "dayOfWeek: 4294967295\nhourOfDay: 4294967295\nminuteOfHour: 4294967295\n"
              "secondOfMinute: 4294967295\nmilliOfSecond: 4294967295\n");
}

}  // namespace

}  // namespace tav::ula
