// SPDX-License-Identifier: MIT
// GNUstep asks the system for its time zone and overlooks TZ where it finds one, whereas every
// other program on the system follows TZ, as those of the platform do. And its tables end in 2037
// and begin in 1901: beyond, it takes the local mean time of some century ago.
#include "Foundation/ReplaceMethod.h"

#include <cmath>
#include <cstdlib>
#include <ctime>
#include <mutex>
#include <optional>
#include <string>

namespace {

using Environment = std::optional<std::string>;

// The value of TZ that counts. GNUstep's own variable is meant for its programs alone.
Environment environment() {
    const char* const text = std::getenv("GNUSTEP_TZ") == nullptr ? std::getenv("TZ") : nullptr;
    return text == nullptr ? Environment() : Environment(text);
}

// What the C library says of a moment. It has no room for years beyond two thousand millions.
tm localTime(NSDate* date) {
    const double seconds = std::floor([date timeIntervalSince1970]);
    const auto moment = static_cast<time_t>(std::fmax(-6e16, std::fmin(seconds, 6e16)));
    tm local{};
    localtime_r(&moment, &local);
    return local;
}

}  // namespace

/// GNUstep's zone of a name, but what is ahead of UTC at which moment is the C library's answer,
/// as long as that is in the same zone.
@interface ULASystemTimeZone : NSTimeZone {
    NSTimeZone* _zone;
    Environment _environment;
}
- (id)initWithZone:(NSTimeZone*)zone environment:(const Environment&)environment;
@end

@implementation ULASystemTimeZone

- (id)initWithZone:(NSTimeZone*)zone environment:(const Environment&)environment {
    // Without that of the class above, which wants the data of a zone.
    _zone = [zone retain];
    _environment = environment;
    return self;
}

- (void)dealloc {
    [_zone release];
    [super dealloc];
}

// Nothing where the C library is in another zone by now.
- (std::optional<tm>)localTimeOf:(NSDate*)date {
    return _environment == environment() ? std::optional(localTime(date)) : std::nullopt;
}

- (NSInteger)secondsFromGMTForDate:(NSDate*)date {
    const std::optional<tm> local = [self localTimeOf:date];
    return local ? local->tm_gmtoff : [_zone secondsFromGMTForDate:date];
}

- (BOOL)isDaylightSavingTimeForDate:(NSDate*)date {
    const std::optional<tm> local = [self localTimeOf:date];
    return local ? local->tm_isdst > 0 : [_zone isDaylightSavingTimeForDate:date];
}

- (NSString*)abbreviationForDate:(NSDate*)date {
    const std::optional<tm> local = [self localTimeOf:date];
    NSString* const name = local ? [NSString stringWithUTF8String:local->tm_zone] : nil;
    return name != nil ? name : [_zone abbreviationForDate:date];
}

- (NSString*)name {
    return [_zone name];
}

- (NSString*)timeZoneName {
    return [_zone name];
}

- (NSData*)data {
    return [_zone data];
}

- (NSArray*)timeZoneDetailArray {
    return [_zone timeZoneDetailArray];
}

- (NSTimeZoneDetail*)timeZoneDetailForDate:(NSDate*)date {
    return [_zone timeZoneDetailForDate:date];
}

@end

namespace {

// "Europe/Berlin" for ":Europe/Berlin" and for the path of its file.
std::string zoneName(std::string text) {
    constexpr std::string_view kZoneFolder = "/usr/share/zoneinfo/";
    if (text.starts_with(':'))
        text.erase(0, 1);
    if (text.starts_with(kZoneFolder))
        text.erase(0, kZoneFolder.size());
    return text;
}

// A rule such as "EST5EDT,M3.2.0,M11.1.0" has no name: it gets the one of a zone as far ahead as it
// is now. What the C library does not understand is UTC.
NSTimeZone* zoneNamed(const std::string& name) {
    // Others are nothing that GNUstep looks for without a complaint.
    const bool isName = !name.empty() && name.front() != '/' && name.find("..") == name.npos &&
                        name.find(',') == name.npos;
    NSString* const text = isName ? [NSString stringWithUTF8String:name.c_str()] : nil;
    NSTimeZone* const zone = text != nil ? [NSTimeZone timeZoneWithName:text] : nil;
    if (zone != nil)
        return zone;
    return [NSTimeZone timeZoneForSecondsFromGMT:localTime([NSDate date]).tm_gmtoff];
}

// Whether the zone is the C library's, as far as this year tells: a user may have set GNUstep
// another.
bool isTheLibrarys(NSTimeZone* zone) {
    constexpr NSTimeInterval kMonth = 30.5 * 86'400;
    for (int month = 0; month < 12; ++month) {
        NSDate* const date = [NSDate dateWithTimeIntervalSinceNow:month * kMonth];
        if (localTime(date).tm_gmtoff != [zone secondsFromGMTForDate:date])
            return false;
    }
    return true;
}

// Owner: the caller.
NSTimeZone* makeZone(const Environment& environment, NSTimeZone* (*zoneOfGNUstep)()) {
    tzset();
    NSTimeZone* const zone = environment ? zoneNamed(zoneName(*environment)) : zoneOfGNUstep();
    if (!environment && !isTheLibrarys(zone))
        return [zone retain];
    return [[ULASystemTimeZone alloc] initWithZone:zone environment:environment];
}

// The zone of the last value that TZ had.
class LastZone {
public:
    // Nil for another value.
    NSTimeZone* find(const Environment& environment) {
        const std::lock_guard lock(_mutex);
        return _environment == environment ? _zone : nil;
    }

    // An earlier zone is kept: another thread may just be using it.
    void set(const Environment& environment, NSTimeZone* zone) {
        const std::lock_guard lock(_mutex);
        _environment = environment;
        _zone = zone;
    }

private:
    std::mutex _mutex;
    Environment _environment;
    NSTimeZone* _zone = nil;
};

NSTimeZone* systemZone(NSTimeZone* (*zoneOfGNUstep)()) {
    static LastZone last;
    static thread_local bool isMaking = false;
    // GNUstep asks for the zone in the making of it: to date its complaints.
    if (isMaking)
        return zoneOfGNUstep();
    const Environment now = environment();
    if (NSTimeZone* const zone = last.find(now))
        return zone;
    isMaking = true;
    NSTimeZone* const zone = makeZone(now, zoneOfGNUstep);
    isMaking = false;
    last.set(now, zone);
    return zone;
}

}  // namespace

@interface NSTimeZone (ULAEnvironment)
+ (NSTimeZone*)ula_systemTimeZone;
@end

@implementation NSTimeZone (ULAEnvironment)

+ (void)load {
    foundation::exchangeClassMethods([NSTimeZone class], @selector(systemTimeZone),
                                     @selector(ula_systemTimeZone));
}

+ (NSTimeZone*)ula_systemTimeZone {
    return systemZone([] { return [NSTimeZone ula_systemTimeZone]; });
}

@end
