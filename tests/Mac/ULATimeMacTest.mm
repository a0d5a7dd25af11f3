// SPDX-License-Identifier: MIT
// Times of the platform: the clock's, the files', and whether its calendar agrees with ours.
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"
#include "ula/ScopedARPool.h"
#include "ula/ULATime.h"

#import <Foundation/Foundation.h>
#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

using tav::test::ChildProcess;
using tav::test::runInChild;
using tav::test::TemporaryFolder;
using tav::test::writeFile;

namespace tav::ula {

namespace {

const ULATime kNone;

std::uint32_t unsignedOf(long value) {
    return static_cast<std::uint32_t>(value);
}

ULATime timeOf(const tm& time) {
    return ULATimeStruct(unsignedOf(time.tm_year + 1900), unsignedOf(time.tm_mon + 1),
                         unsignedOf(time.tm_mday), unsignedOf(time.tm_wday),
                         unsignedOf(time.tm_hour), unsignedOf(time.tm_min), unsignedOf(time.tm_sec),
                         0);
}

ULATime utcOf(time_t seconds) {
    tm time{};
    gmtime_r(&seconds, &time);
    return timeOf(time);
}

ULATime localOf(time_t seconds) {
    tm time{};
    localtime_r(&seconds, &time);
    return timeOf(time);
}

// All fields, the day of the week too.
std::string allOf(const ULATime& time) {
    return time.toString();
}

// What the platform's calendar makes of the components.
ULATime timeOfPlatform(const ULATimeStruct& fields) {
    NSTimeZone* const utc = [NSTimeZone timeZoneWithAbbreviation:@"UTC"];
    NSCalendarDate* const date = [NSCalendarDate dateWithYear:fields.year
                                                        month:fields.monthOfYear
                                                          day:fields.dayOfMonth
                                                         hour:fields.hourOfDay
                                                       minute:fields.minuteOfHour
                                                       second:fields.secondOfMinute
                                                     timeZone:utc];
    return ULATimeStruct(unsignedOf([date yearOfCommonEra]), unsignedOf([date monthOfYear]),
                         unsignedOf([date dayOfMonth]), unsignedOf([date dayOfWeek]),
                         unsignedOf([date hourOfDay]), unsignedOf([date minuteOfHour]),
                         unsignedOf([date secondOfMinute]), 0);
}

ULATime timeOfOurs(const ULATimeStruct& fields) {
    return ULATime(fields.year, fields.monthOfYear, fields.dayOfMonth, fields.hourOfDay,
                   fields.minuteOfHour, fields.secondOfMinute, 0);
}

void expectLikePlatform(const ULATimeStruct& fields) {
    const ScopedARPool pool;
    EXPECT_EQ(allOf(timeOfOurs(fields)), allOf(timeOfPlatform(fields))) << allOf(fields);
}

class Calendar : public testing::Test {
protected:
    std::uint32_t between(std::uint32_t least, std::uint32_t most) {
        return std::uniform_int_distribution<std::uint32_t>(least, most)(_random);
    }

private:
    std::mt19937 _random{41};
};

TEST_F(Calendar, ComponentsInTheirRangesAreThePlatforms) {
    for (int i = 0; i < 3000; ++i)
        expectLikePlatform({between(1, 9999), between(1, 12), between(1, 28), 0, between(0, 23),
                            between(0, 59), between(0, 59), 0});
}

// Quietly: the platform logs each one. GNUstep takes month 0 for January, and miscounts the days
// from month 14 on, and of month 13 when days are carried, too.
TEST_F(Calendar, ComponentsOutOfTheirRangesAreThePlatforms) {
    testing::internal::CaptureStderr();
    for (int i = 0; i < 3000; ++i) {
        expectLikePlatform({between(1, 4000), between(1, 12), between(0, 800), 0, between(0, 100),
                            between(0, 1000), between(0, 100'000), 0});
        expectLikePlatform({between(1, 4000), 13, between(1, 28), 0, between(0, 23), between(0, 59),
                            between(0, 59), 0});
    }
    testing::internal::GetCapturedStderr();
}

TEST_F(Calendar, EveryEndOfAMonthIsThePlatforms) {
    testing::internal::CaptureStderr();
    for (std::uint32_t year :
         {4u, 100u, 1582u, 1600u, 1752u, 1900u, 1970u, 2000u, 2008u, 2009u, 2100u, 9999u})
        for (std::uint32_t month = 1; month <= 12; ++month)
            for (std::uint32_t day : {0u, 1u, 28u, 29u, 30u, 31u, 32u})
                expectLikePlatform({year, month, day, 0, 23, 59, 60, 0});
    testing::internal::GetCapturedStderr();
}

// Not by time(), whose clock is some milliseconds behind.
time_t secondsNow() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return now.tv_sec;
}

// Whether the time is of a second between `before` and now.
bool isNow(const ULATime& time, time_t before, ULATime (*timeOfClock)(time_t)) {
    const time_t after = secondsNow();
    for (time_t second = before; second <= after; ++second) {
        ULATime expected = timeOfClock(second);
        expected.milliOfSecond = time.milliOfSecond;
        if (allOf(expected) == allOf(time))
            return true;
    }
    return false;
}

TEST(CurrentTime, IsNowAndValid) {
    const time_t before = secondsNow();
    const ULATime time = ULATime::fromCurrentTime(true);
    EXPECT_TRUE(isNow(time, before, localOf)) << allOf(time);
    EXPECT_TRUE(time.weakValidationCheck());
}

// The milliseconds come from a second look at the clock.
TEST(CurrentTime, MillisecondsAreThoseOfTheClock) {
    const auto now = [] {
        timespec time{};
        clock_gettime(CLOCK_REALTIME, &time);
        return time;
    };
    ULATime time;
    timespec before{}, after{};
    do {
        before = now();
        time = ULATime::fromCurrentTime(false);
        after = now();
    } while (before.tv_sec != after.tv_sec);
    EXPECT_GE(time.milliOfSecond, before.tv_nsec / 1'000'000);
    EXPECT_LE(time.milliOfSecond, after.tv_nsec / 1'000'000);
}

// In a process of its own, with another value of TZ.
std::string withZone(const char* zone, const std::function<std::string()>& function) {
    return runInChild([=] {
        zone != nullptr ? setenv("TZ", zone, 1) : unsetenv("TZ");
        tzset();
        return function();
    });
}

class Zones : public testing::TestWithParam<const char*> {};

TEST_P(Zones, CurrentTimeIsTheLocalOneAndSoIsTheDefault) {
    for (bool localTime : {true, false})
        EXPECT_EQ(withZone(GetParam(),
                           [=] {
                               const time_t before = secondsNow();
                               const ULATime time = ULATime::fromCurrentTime(localTime);
                               return isNow(time, before, localOf) ? "right" : allOf(time);
                           }),
                  "right");
}

TEST_P(Zones, FileDatesAreLocalOnesOfAnyTimeOfTheYear) {
    const TemporaryFolder folder;
    const std::string path = folder / "file";
    writeFile(path, "text");
    // Winter, summer, and the two hours of which one is missing and one comes twice in Berlin;
    // January and July of 2200, August of 1906.
    for (time_t seconds :
         {1'231'545'600L, 1'247'184'000L, 1'238'288'400L, 1'238'292'000L, 1'256'432'400L,
          1'256'436'000L, 7'258'118'400L, 7'275'000'000L, -2'000'000'000L}) {
        const timespec times[] = {{seconds, 0}, {seconds, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
        const auto read = [&] {
            const ULATime time = ULATime::fromFileCreationTime(true, path);
            return allOf(time) == allOf(localOf(seconds)) ? "right" : allOf(time);
        };
        EXPECT_EQ(withZone(GetParam(), read), "right") << seconds;
    }
}

INSTANTIATE_TEST_SUITE_P(OfTheWorld, Zones,
                         testing::Values(nullptr, "", "UTC", "Asia/Kolkata", ":Asia/Kathmandu",
                                         "Europe/Berlin", "America/New_York",
                                         "/usr/share/zoneinfo/Pacific/Apia", "EST5EDT", "XYZ-5:45",
                                         "CET-1CEST,M3.5.0,M10.5.0/3", ":nonsense", "/nowhere"));

TEST(CurrentTime, WithoutLocalTimeIsInTheZoneThatTheProgramChose) {
    EXPECT_EQ(withZone("Asia/Kolkata",
                       [] {
                           const ScopedARPool pool;
                           [NSTimeZone setDefaultTimeZone:[NSTimeZone timeZoneWithName:@"UTC"]];
                           const time_t before = secondsNow();
                           const ULATime time = ULATime::fromCurrentTime(false);
                           return isNow(time, before, utcOf) ? "right" : allOf(time);
                       }),
              "right");
}

class FileTime : public testing::Test {
protected:
    FileTime() { writeFile(path, "text"); }

    void setModified(time_t seconds, long nanoseconds = 0) {
        const timespec times[] = {{seconds, nanoseconds}, {seconds, nanoseconds}};
        ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    }

    time_t birthTime() const {
        struct statx info {};
        EXPECT_EQ(statx(AT_FDCWD, path.c_str(), 0, STATX_BTIME, &info), 0);
        EXPECT_TRUE(info.stx_mask & STATX_BTIME) << "the temporary folder keeps no birth times";
        return info.stx_btime.tv_sec;
    }

    const TemporaryFolder folder;
    const std::string path = folder / "file";
};

TEST_F(FileTime, ModificationTimeIsTheCreationDateAndTheOtherWayRound) {
    setModified(1'000'000'000);
    ASSERT_NE(birthTime(), 1'000'000'000);
    EXPECT_EQ(allOf(ULATime::fromFileModificationTime(true, path)), allOf(utcOf(birthTime())));
    EXPECT_EQ(allOf(ULATime::fromFileCreationTime(true, path)), allOf(utcOf(1'000'000'000)));
}

TEST_F(FileTime, CreationDateStaysWhenTheFileIsChanged) {
    const ULATime made = ULATime::fromFileModificationTime(true, path);
    setModified(1'000'000'000);
    writeFile(path, "another text");
    EXPECT_EQ(allOf(ULATime::fromFileModificationTime(true, path)), allOf(made));
}

TEST_F(FileTime, FirstArgumentIsIgnored) {
    setModified(1'000'000'000);
    EXPECT_EQ(allOf(ULATime::fromFileCreationTime(false, path)), allOf(utcOf(1'000'000'000)));
    EXPECT_EQ(allOf(ULATime::fromFileModificationTime(false, path)),
              allOf(ULATime::fromFileModificationTime(true, path)));
}

TEST_F(FileTime, FractionsOfASecondAreCutOff) {
    for (long nanoseconds : {1L, 500'000'000L, 999'000'000L}) {
        setModified(1'000'000'000, nanoseconds);
        EXPECT_EQ(allOf(ULATime::fromFileCreationTime(true, path)), allOf(utcOf(1'000'000'000)));
    }
}

TEST_F(FileTime, FilesOfTheFutureAndFromBefore1970HaveTheirDates) {
    // 2200-07-15, 2038-01-19 and the next second, 1969-12-31, 1906-08-16.
    for (time_t seconds : {7'275'000'000L, 2'147'483'647L, 2'147'483'648L, -1L, -2'000'000'000L}) {
        setModified(seconds);
        EXPECT_EQ(allOf(ULATime::fromFileCreationTime(true, path)), allOf(utcOf(seconds)));
    }
}

TEST_F(FileTime, FractionsBefore1970AreCutOffTowardsThePast) {
    setModified(-2, 500'000'000);
    EXPECT_EQ(allOf(ULATime::fromFileCreationTime(true, path)), allOf(utcOf(-2)));
}

TEST_F(FileTime, FoldersAndNamesThatAreNotAsciiHaveDates) {
    const std::string inner = folder / "Ferien Äpfel 写真\n";
    std::filesystem::create_directory(inner);
    EXPECT_TRUE(ULATime::fromFileModificationTime(true, inner).weakValidationCheck());
    EXPECT_TRUE(ULATime::fromFileCreationTime(true, inner).weakValidationCheck());
}

TEST_F(FileTime, LinksAreFollowed) {
    setModified(1'000'000'000);
    std::filesystem::create_symlink("file", folder / "link");
    std::filesystem::create_symlink("link", folder / "link to the link");
    EXPECT_EQ(allOf(ULATime::fromFileCreationTime(true, folder / "link to the link")),
              allOf(utcOf(1'000'000'000)));
    EXPECT_EQ(allOf(ULATime::fromFileModificationTime(true, folder / "link")),
              allOf(utcOf(birthTime())));
}

void expectNone(const std::string& path) {
    EXPECT_EQ(allOf(ULATime::fromFileCreationTime(true, path)), allOf(kNone)) << path;
    EXPECT_EQ(allOf(ULATime::fromFileModificationTime(true, path)), allOf(kNone)) << path;
}

TEST_F(FileTime, WhatIsNotThereIsAllZero) {
    expectNone(folder / "missing");
    expectNone(path + "/below a file");
    expectNone("");
    expectNone(std::string(5000, 'x'));
    expectNone("/" + std::string(300, 'x'));
}

TEST_F(FileTime, LinksThatLeadNowhereAreAllZero) {
    std::filesystem::create_symlink("missing", folder / "dangling");
    std::filesystem::create_symlink("loop", folder / "loop");
    expectNone(folder / "dangling");
    expectNone(folder / "loop");
}

TEST_F(FileTime, PathThatIsNoTextIsAllZero) {
    const std::string odd = folder / "odd \xff\xfe name";
    writeFile(odd, "text");
    expectNone(odd);
    expectNone("\xc3");
}

TEST_F(FileTime, FileInAFolderThatMayNotBeEnteredIsAllZero) {
    const std::string inner = folder / "locked";
    std::filesystem::create_directory(inner);
    writeFile(inner + "/file", "text");
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(inner, std::filesystem::perms(0700));
    ChildProcess nobody([&] {
        const bool switched = setgid(65534) == 0 && setuid(65534) == 0;
        const bool isNone =
            allOf(ULATime::fromFileCreationTime(true, inner + "/file")) == allOf(kNone) &&
            allOf(ULATime::fromFileModificationTime(true, inner + "/file")) == allOf(kNone);
        const bool sees = ULATime::fromFileCreationTime(true, path).weakValidationCheck();
        _exit(switched && isNone && sees ? 0 : 1);
    });
    EXPECT_EQ(nobody.wait(), 0);
    EXPECT_TRUE(ULATime::fromFileCreationTime(true, inner + "/file").weakValidationCheck());
}

TEST_F(FileTime, FileSystemWithoutBirthTimesGivesTheDateOfTheChange) {
    const ULATime changed = ULATime::fromFileCreationTime(true, "/sys");
    EXPECT_TRUE(changed.weakValidationCheck());
    EXPECT_EQ(allOf(ULATime::fromFileModificationTime(true, "/sys")), allOf(changed));
}

}  // namespace

}  // namespace tav::ula
