// SPDX-License-Identifier: MIT
// The system's time zone is that of TZ, as for every other program.
#import <Foundation/Foundation.h>

#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>
#include <string>

namespace {

struct Case {
    const char* zone;
    const char* name;
};

class SystemTimeZone : public testing::Test {
protected:
    void SetUp() override {
        pool = [[NSAutoreleasePool alloc] init];
        unsetenv("GNUSTEP_TZ");
        [NSTimeZone setDefaultTimeZone:nil];
    }
    void TearDown() override { [pool release]; }

    static void use(const char* zone) {
        setenv("TZ", zone, 1);
        tzset();
    }

    static std::string name() { return [[[NSTimeZone systemTimeZone] name] UTF8String]; }

    // What the C library says of now.
    static NSInteger secondsAhead() {
        const time_t now = time(nullptr);
        tm local{};
        localtime_r(&now, &local);
        return local.tm_gmtoff;
    }

    NSAutoreleasePool* pool = nil;
};

TEST_F(SystemTimeZone, IsTheOneThatTZNames) {
    for (const Case& each :
         {Case{"Asia/Kolkata", "Asia/Kolkata"}, Case{":Europe/Berlin", "Europe/Berlin"},
          Case{"/usr/share/zoneinfo/Pacific/Apia", "Pacific/Apia"}, Case{"EST5EDT", "EST5EDT"}}) {
        use(each.zone);
        EXPECT_EQ(name(), each.name);
        EXPECT_EQ([[NSTimeZone systemTimeZone] secondsFromGMT], secondsAhead()) << each.zone;
    }
}

TEST_F(SystemTimeZone, IsAsFarAheadAsARuleSaysNow) {
    for (const char* zone : {"XYZ-5:45", "<+0330>-3:30", "CET-1CEST,M3.5.0,M10.5.0/3",
                             "NZST-12NZDT,M9.5.0,M4.1.0/3"}) {
        use(zone);
        EXPECT_EQ([[NSTimeZone systemTimeZone] secondsFromGMT], secondsAhead()) << zone;
    }
}

TEST_F(SystemTimeZone, IsUtcWhereTZMakesNoSense) {
    for (const char* zone : {"", ":", ":nonsense", "/nowhere", "../../etc/passwd", "\xff\xfe"}) {
        use(zone);
        EXPECT_EQ([[NSTimeZone systemTimeZone] secondsFromGMT], 0) << zone;
    }
}

TEST_F(SystemTimeZone, LocalAndDefaultZonesFollowUnlessTheProgramChoseAnother) {
    use("Asia/Kolkata");
    EXPECT_EQ([[NSTimeZone localTimeZone] secondsFromGMT], 19'800);
    EXPECT_EQ([[NSTimeZone defaultTimeZone] secondsFromGMT], 19'800);
    [NSTimeZone setDefaultTimeZone:[NSTimeZone timeZoneForSecondsFromGMT:3600]];
    EXPECT_EQ([[NSTimeZone defaultTimeZone] secondsFromGMT], 3600);
    EXPECT_EQ([[NSTimeZone systemTimeZone] secondsFromGMT], 19'800);
}

TEST_F(SystemTimeZone, DatesAreWrittenDownAndReadInIt) {
    use("Europe/Berlin");
    NSDate* const summer = [NSDate dateWithTimeIntervalSince1970:7'275'000'000];
    EXPECT_TRUE([[summer description] isEqual:@"2200-07-15 11:20:00 +0200"]);
    NSCalendarDate* const read =
        [[[NSCalendarDate alloc] initWithString:[summer description]] autorelease];
    EXPECT_EQ([read timeIntervalSince1970], 7'275'000'000);
    NSCalendarDate* const winter = [NSCalendarDate dateWithTimeIntervalSince1970:7'258'118'400];
    EXPECT_EQ([winter hourOfDay], 1);
    NSCalendarDate* const made = [NSCalendarDate dateWithYear:2200
                                                        month:7
                                                          day:15
                                                         hour:11
                                                       minute:20
                                                       second:0
                                                     timeZone:[NSTimeZone systemTimeZone]];
    EXPECT_EQ([made timeIntervalSince1970], 7'275'000'000);
}

TEST_F(SystemTimeZone, IsTheSameObjectEachTime) {
    use("Asia/Kolkata");
    EXPECT_EQ([NSTimeZone systemTimeZone], [NSTimeZone systemTimeZone]);
}

TEST_F(SystemTimeZone, IsGNUstepsAnswerWithoutTZAndWithItsOwnVariable) {
    unsetenv("TZ");
    EXPECT_NE([NSTimeZone systemTimeZone], nil);
    const std::string without = name();
    setenv("GNUSTEP_TZ", "Asia/Tokyo", 1);
    use("Asia/Kolkata");
    EXPECT_EQ(name(), without) << "GNUstep has looked for it already";
}

TEST_F(SystemTimeZone, KnowsEveryYearLikeTheCLibrary) {
    for (const char* zone : {"Europe/Berlin", "Asia/Kolkata", "Australia/Lord_Howe", "UTC",
                             "CET-1CEST,M3.5.0,M10.5.0/3"}) {
        use(zone);
        for (time_t moment = -5'000'000'000; moment < 9'000'000'000; moment += 9'876'543) {
            tm local{};
            localtime_r(&moment, &local);
            NSDate* const date = [NSDate dateWithTimeIntervalSince1970:double(moment)];
            NSTimeZone* const system = [NSTimeZone systemTimeZone];
            ASSERT_EQ([system secondsFromGMTForDate:date], local.tm_gmtoff) << zone << moment;
            ASSERT_EQ([system isDaylightSavingTimeForDate:date], local.tm_isdst > 0) << moment;
            ASSERT_STREQ([[system abbreviationForDate:date] UTF8String], local.tm_zone) << moment;
        }
    }
}

TEST_F(SystemTimeZone, EndsOfTimeHaveAnAnswer) {
    use("Asia/Kolkata");
    for (NSDate* date : {[NSDate distantPast],
                         [NSDate distantFuture],
                         [NSDate dateWithTimeIntervalSince1970:1e300],
                         [NSDate dateWithTimeIntervalSince1970:-1e300]})
        EXPECT_GT([[NSTimeZone systemTimeZone] secondsFromGMTForDate:date], 0);
}

TEST_F(SystemTimeZone, ZoneStaysWhatItIsWhenTZChanges) {
    use("Asia/Kolkata");
    NSTimeZone* const kolkata = [NSTimeZone systemTimeZone];
    use("Asia/Tokyo");
    EXPECT_EQ([kolkata secondsFromGMT], 19'800);
    EXPECT_EQ([[NSTimeZone systemTimeZone] secondsFromGMT], 32'400);
    EXPECT_TRUE([[kolkata name] isEqual:@"Asia/Kolkata"]);
}

}  // namespace
