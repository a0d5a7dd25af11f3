// SPDX-License-Identifier: MIT
#include "ula/src/Core/CivilCalendar.h"

#include <climits>
#include <ctime>
#include <gtest/gtest.h>
#include <random>
#include <tuple>

namespace tav::ula {

namespace {

using Values = std::tuple<std::int64_t, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t,
                          std::uint32_t, std::uint32_t>;

Values valuesOf(const CivilTime& time) {
    return {time.year, time.month, time.day, time.dayOfWeek, time.hour, time.minute, time.second};
}

/// As the C library carries the fields.
Values valuesOfLibrary(const CivilFields& fields) {
    tm time{};
    time.tm_year = fields.year - 1900;
    time.tm_mon = fields.month - 1;
    time.tm_mday = fields.day;
    time.tm_hour = fields.hour;
    time.tm_min = fields.minute;
    time.tm_sec = fields.second;
    const time_t seconds = timegm(&time);
    gmtime_r(&seconds, &time);
    auto value = [](int field) { return static_cast<std::uint32_t>(field); };
    return {std::int64_t(time.tm_year) + 1900,
            value(time.tm_mon + 1),
            value(time.tm_mday),
            value(time.tm_wday),
            value(time.tm_hour),
            value(time.tm_min),
            value(time.tm_sec)};
}

void expectLikeLibrary(const CivilFields& fields) {
    EXPECT_EQ(valuesOf(normalizeCivilTime(fields)), valuesOfLibrary(fields))
        << fields.year << ' ' << fields.month << ' ' << fields.day << ' ' << fields.hour << ' '
        << fields.minute << ' ' << fields.second;
}

class Fields {
public:
    int between(int least, int most) {
        return std::uniform_int_distribution<int>(least, most)(_random);
    }
    CivilFields within(int range) {
        return {between(-range, range), between(-range, range), between(-range, range),
                between(-range, range), between(-range, range), between(-range, range)};
    }

private:
    std::mt19937 _random{17};
};

TEST(CivilCalendar, EveryDayOfFourHundredYearsIsTheLibrarys) {
    for (int day = 0; day <= 146'097; ++day)
        expectLikeLibrary({1800, 1, day, 12, 0, 0});
}

TEST(CivilCalendar, EveryDayOfEveryMonthThereMayBeIsTheLibrarys) {
    for (int year : {-400, -1, 0, 1, 4, 1582, 1600, 1752, 1900, 2000, 2008, 2009, 9999, 40'000})
        for (int month = 0; month <= 13; ++month)
            for (int day = 0; day <= 32; ++day)
                expectLikeLibrary({year, month, day, 23, 59, 59});
}

TEST(CivilCalendar, AnythingNearItsRangeIsTheLibrarys) {
    Fields fields;
    for (int i = 0; i < 50'000; ++i)
        expectLikeLibrary({fields.between(1, 4000), fields.between(-1, 14), fields.between(-1, 33),
                           fields.between(-1, 25), fields.between(-1, 61), fields.between(-1, 61)});
}

TEST(CivilCalendar, AnythingFarFromItsRangeIsTheLibrarys) {
    Fields fields;
    for (int range : {100, 10'000, 1'000'000, 1'000'000'000})
        for (int i = 0; i < 50'000; ++i)
            expectLikeLibrary(fields.within(range));
}

TEST(CivilCalendar, TheLargestAndTheSmallestFieldsAreCarried) {
    const CivilTime last =
        normalizeCivilTime({INT_MAX, INT_MAX, INT_MAX, INT_MAX, INT_MAX, INT_MAX});
    EXPECT_EQ(valuesOf(last), Values(2'332'569'362, 11, 26, 5, 12, 21, 7));
    const CivilTime first =
        normalizeCivilTime({INT_MIN, INT_MIN, INT_MIN, INT_MIN, INT_MIN, INT_MIN});
    EXPECT_EQ(valuesOf(first), Values(-2'332'569'365, 11, 1, 0, 10, 37, 52));
}

TEST(CivilCalendar, EveryDayHasTheLibrarysDayOfTheWeek) {
    for (std::uint32_t year = 1; year <= 3000; ++year)
        for (std::uint32_t month = 1; month <= 12; ++month)
            for (std::uint32_t day = 1; isCivilDate(year, month, day); ++day) {
                tm time{};
                time.tm_year = static_cast<int>(year) - 1900;
                time.tm_mon = static_cast<int>(month) - 1;
                time.tm_mday = static_cast<int>(day);
                timegm(&time);
                ASSERT_EQ(time.tm_mday, static_cast<int>(day)) << year << ' ' << month;
                ASSERT_EQ(dayOfWeek(year, month, day), static_cast<std::uint32_t>(time.tm_wday))
                    << year << ' ' << month << ' ' << day;
            }
}

TEST(CivilCalendar, DayOfTheWeekOfTheLastYearsIsTheCarriedOnes) {
    for (std::int32_t year : {INT_MAX, INT_MAX - 1, INT_MAX - 47, 1'000'000'000})
        for (std::uint32_t month = 1; month <= 12; ++month)
            EXPECT_EQ(dayOfWeek(static_cast<std::uint32_t>(year), month, 28),
                      normalizeCivilTime({year, static_cast<std::int32_t>(month), 28}).dayOfWeek);
}

TEST(CivilCalendar, LeapYearsAreEveryFourthButOfCenturiesOnlyEveryFourth) {
    for (std::uint32_t year : {4u, 1600u, 2000u, 2008u, 2400u, 100'000u})
        EXPECT_TRUE(isCivilDate(year, 2, 29)) << year;
    for (std::uint32_t year : {1u, 100u, 1700u, 1800u, 1900u, 2009u, 2100u, 100'100u})
        EXPECT_FALSE(isCivilDate(year, 2, 29)) << year;
    EXPECT_FALSE(isCivilDate(2008, 2, 30));
}

TEST(CivilCalendar, OnlyDaysOfTheCalendarAreDates) {
    constexpr std::uint32_t kLast[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    for (std::uint32_t month = 1; month <= 12; ++month) {
        EXPECT_TRUE(isCivilDate(2009, month, 1));
        EXPECT_TRUE(isCivilDate(2009, month, kLast[month - 1]));
        EXPECT_FALSE(isCivilDate(2009, month, 0));
        EXPECT_FALSE(isCivilDate(2009, month, kLast[month - 1] + 1));
        EXPECT_FALSE(isCivilDate(2009, month, 4294967295u));
    }
    EXPECT_FALSE(isCivilDate(2009, 0, 1));
    EXPECT_FALSE(isCivilDate(2009, 13, 1));
    EXPECT_FALSE(isCivilDate(2009, 4294967295u, 1));
}

}  // namespace

}  // namespace tav::ula
