// SPDX-License-Identifier: MIT
#include "ula/ShootingDate.h"

#include <gtest/gtest.h>

namespace tav::ula {

namespace {

const char* const kBlank = "    :  :     :  :  ";

/// What was read, in ISO 8601; "nothing" for nothing.
std::string read(std::string_view text) {
    const auto date = parseShootingDate(text);
    return date ? date->toString() : "nothing";
}

std::string read(std::string_view dateTime, std::string_view subSecond, std::string_view offset) {
    const auto date = parseShootingDate(dateTime, subSecond, offset);
    return date ? date->toString() : "nothing";
}

ShootingDate dateOf(std::string_view text) {
    const auto date = parseShootingDate(text);
    EXPECT_TRUE(date) << text;
    return date.value_or(ShootingDate());
}

std::string utcOf(std::string_view text) {
    const auto utc = dateOf(text).toUtc();
    return utc ? utc->toString() : "nothing";
}

std::string fields(const ULATimeStruct& values) {
    return ULATime(values).toString();
}

TEST(ShootingDate, CamerasTextIsReadWithItsDayOfTheWeek) {
    const ShootingDate date = dateOf("2009:03:15 10:20:30");
    EXPECT_EQ(date.time.toString(), fields({2009, 3, 15, 0, 10, 20, 30, 0}));
    EXPECT_FALSE(date.nanoOfSecond);
    EXPECT_EQ(date.fractionDigits, 0u);
    EXPECT_FALSE(date.utcOffsetMinutes);
}

TEST(ShootingDate, IsoLayoutsAreReadLikeCameras) {
    EXPECT_EQ(read("2009-03-15T10:20:30"), "2009-03-15T10:20:30");
    EXPECT_EQ(read("2009-03-15 10:20:30"), "2009-03-15T10:20:30");
    EXPECT_EQ(read("2009:03:15T10:20:30"), "2009-03-15T10:20:30");
}

TEST(ShootingDate, FractionIsAFractionOfTheSecond) {
    const ShootingDate date = dateOf("2009:03:15 10:20:30.45");
    EXPECT_EQ(date.time.milliOfSecond, 450u);
    EXPECT_EQ(date.nanoOfSecond, 450'000'000u);
    EXPECT_EQ(date.fractionDigits, 2u);
    EXPECT_EQ(dateOf("2009:03:15 10:20:30.045").time.milliOfSecond, 45u);
    EXPECT_EQ(dateOf("2009:03:15 10:20:30,5").time.milliOfSecond, 500u);
    EXPECT_EQ(dateOf("2009:03:15 10:20:30.0").nanoOfSecond, 0u);
}

TEST(ShootingDate, FractionIsRoundedDownToMillisecondsAndNanoseconds) {
    EXPECT_EQ(dateOf("2009:03:15 10:20:30.9999").time.milliOfSecond, 999u);
    const ShootingDate date = dateOf("2009:03:15 10:20:30.1234567899999999999999999");
    EXPECT_EQ(date.nanoOfSecond, 123'456'789u);
    EXPECT_EQ(date.fractionDigits, 9u);
}

TEST(ShootingDate, OffsetsFromUtcAreRead) {
    EXPECT_EQ(dateOf("2009:03:15 10:20:30+02:00").utcOffsetMinutes, 120);
    EXPECT_EQ(dateOf("2009:03:15 10:20:30 +02:00").utcOffsetMinutes, 120);
    EXPECT_EQ(dateOf("2009-03-15T10:20:30.45-0330").utcOffsetMinutes, -210);
    EXPECT_EQ(dateOf("2009-03-15T10:20:30Z").utcOffsetMinutes, 0);
    EXPECT_EQ(dateOf("2009-03-15T10:20:30z").utcOffsetMinutes, 0);
    EXPECT_EQ(dateOf("2009-03-15T10:20:30-00:00").utcOffsetMinutes, 0);
    EXPECT_EQ(dateOf("2009-03-15T10:20:30+14:00").utcOffsetMinutes, 840);
    EXPECT_EQ(dateOf("2009-03-15T10:20:30-14:00").utcOffsetMinutes, -840);
}

TEST(ShootingDate, OffsetsOfNoPlaceAreRefused) {
    for (const char* offset : {"+14:01", "-15:00", "+02:60", "+2:00", "+02", "+", "02:00", "Z0",
                               "+02:00Z", "UTC", "+02:0", "+ 2:00"})
        EXPECT_EQ(read(std::string("2009:03:15 10:20:30") + offset), "nothing") << offset;
}

TEST(ShootingDate, ToUtcTakesTheOffsetAway) {
    EXPECT_EQ(utcOf("2009:03:15 10:20:30.45+02:00"), fields({2009, 3, 15, 0, 8, 20, 30, 450}));
    EXPECT_EQ(utcOf("2009:12:31 22:30:00-05:45"), fields({2010, 1, 1, 5, 4, 15, 0, 0}));
    EXPECT_EQ(utcOf("2008:03:01 00:30:00+01:00"), fields({2008, 2, 29, 5, 23, 30, 0, 0}));
    EXPECT_EQ(utcOf("9999:12:31 23:59:59-14:00"), fields({10000, 1, 1, 6, 13, 59, 59, 0}));
}

TEST(ShootingDate, ToUtcIsNothingWithoutAnOffsetAndBeforeTheFirstYear) {
    EXPECT_EQ(utcOf("2009:03:15 10:20:30"), "nothing");
    EXPECT_EQ(utcOf("0001:01:01 00:00:00+00:01"), "nothing");
}

TEST(ShootingDate, SameMomentInTwoZonesIsTheSameInUtcAndNotToldAlike) {
    const ShootingDate berlin = dateOf("2009:03:15 10:20:30+01:00");
    const ShootingDate london = dateOf("2009:03:15 09:20:30Z");
    EXPECT_EQ(berlin.toUtc(), london.toUtc());
    EXPECT_FALSE(berlin == london);
    EXPECT_EQ(berlin, dateOf("2009-03-15T10:20:30 +0100"));
    EXPECT_FALSE(dateOf("2009:03:15 10:20:30.5") == dateOf("2009:03:15 10:20:30.50"));
}

TEST(ShootingDate, DatesOfNoCalendarAreRefused) {
    for (const char* date : {"2009:02:29", "2009:04:31", "2009:13:01", "2009:00:01", "2009:01:00",
                             "2009:01:32", "1900:02:29", "0000:01:01"})
        EXPECT_EQ(read(std::string(date) + " 10:20:30"), "nothing") << date;
    for (const char* date : {"2008:02:29", "2000:02:29", "2009:12:31", "0001:01:01", "9999:12:31"})
        EXPECT_NE(read(std::string(date) + " 10:20:30"), "nothing") << date;
}

TEST(ShootingDate, TimesOfNoClockAreRefused) {
    for (const char* time : {"24:00:00", "10:60:00", "10:20:60", "23:59:60", "99:99:99"})
        EXPECT_EQ(read(std::string("2016:12:31 ") + time), "nothing") << time;
}

TEST(ShootingDate, BlankDatesOfCamerasAreNothing) {
    EXPECT_EQ(read(kBlank), "nothing");
    EXPECT_EQ(read("0000:00:00 00:00:00"), "nothing");
    EXPECT_EQ(read("                   "), "nothing");
    EXPECT_EQ(read(std::string_view("\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 20)), "nothing");
    EXPECT_EQ(read("2009:03:15   :  :  "), "nothing");
    EXPECT_EQ(read(""), "nothing");
}

TEST(ShootingDate, PaddingAroundTheTextDoesNotCount) {
    EXPECT_EQ(read(std::string_view("2009:03:15 10:20:30\0", 20)), "2009-03-15T10:20:30");
    EXPECT_EQ(read(" 2009:03:15 10:20:30  "), "2009-03-15T10:20:30");
    EXPECT_EQ(read("2009:03:15 10:20:30   Z "), "2009-03-15T10:20:30+00:00");
}

TEST(ShootingDate, OtherTextsAreRefused) {
    for (const char* text :
         {"2009:03:15", "2009:03:15 10:20", "2009:03:15 10:20:3", "2009:03:15 10:20:30.",
          "2009:03:15 10:20:30.x", "2009:03:15 10:20:30 x", "2009:03:15  10:20:30",
          "2009:03-15 10:20:30", "2009/03/15 10:20:30", "20090315T102030", "2009:3:15 10:20:30",
          " 009:03:15 10:20:30", "+009:03:15 10:20:30", "2009:03:15 10-20-30",
          "12009:03:15 10:20:30", "2009:03:15 10:20:3012", "garbage"})
        EXPECT_EQ(read(text), "nothing") << text;
}

TEST(ShootingDate, FractionAndOffsetGivenSeparatelyAreTaken) {
    EXPECT_EQ(read("2009:03:15 10:20:30", "45", "+02:00"), "2009-03-15T10:20:30.45+02:00");
    EXPECT_EQ(read("2009:03:15 10:20:30", "", ""), "2009-03-15T10:20:30");
    EXPECT_EQ(read(std::string_view("2009:03:15 10:20:30\0", 20), std::string_view("45  \0", 5),
                   std::string_view("-05:00\0", 7)),
              "2009-03-15T10:20:30.45-05:00");
}

TEST(ShootingDate, FractionOrOffsetThatMakesNoSenseTellsNothing) {
    EXPECT_EQ(read("2009:03:15 10:20:30", "4x", "   :  "), "2009-03-15T10:20:30");
    EXPECT_EQ(read("2009:03:15 10:20:30", "  ", "+99:00"), "2009-03-15T10:20:30");
    EXPECT_EQ(read("2009:03:15 10:20:30", "-4", "+02:00x"), "2009-03-15T10:20:30");
    EXPECT_EQ(read("2009:03:15 10:20:30", ".45", "+02"), "2009-03-15T10:20:30");
}

TEST(ShootingDate, FractionAndOffsetOfTheDateItselfCountFirst) {
    EXPECT_EQ(read("2009:03:15 10:20:30.1Z", "45", "+02:00"), "2009-03-15T10:20:30.1+00:00");
    EXPECT_EQ(read("2009:03:15 10:20:30Z", "45", "+02:00"), "2009-03-15T10:20:30.45+00:00");
}

TEST(ShootingDate, BlankDateIsNothingWhateverElseIsTold) {
    EXPECT_EQ(read(kBlank, "45", "+02:00"), "nothing");
}

TEST(ShootingDate, TextReadsBackAsTheSameValue) {
    for (const char* text :
         {"2009-03-15T10:20:30", "2009-03-15T10:20:30.450", "0001-01-01T00:00:00Z",
          "9999-12-31T23:59:59.999999999-14:00", "2009-03-15T10:20:30+05:45"})
        EXPECT_EQ(parseShootingDate(dateOf(text).toString()), dateOf(text)) << text;
}

}  // namespace

}  // namespace tav::ula
