// SPDX-License-Identifier: MIT
#include "ula/ULATime.h"

#import "ula/ObjCHelper.h"
#include "ula/ScopedARPool.h"

#import <Foundation/Foundation.h>
#include <sys/time.h>

namespace tav::ula {

namespace {

std::uint32_t unsignedOf(NSInteger value) {
    return static_cast<std::uint32_t>(value);
}

/// All zero for nil.
ULATimeStruct fieldsOf(NSCalendarDate* date) {
    return {unsignedOf([date yearOfCommonEra]), unsignedOf([date monthOfYear]),
            unsignedOf([date dayOfMonth]),      unsignedOf([date dayOfWeek]),
            unsignedOf([date hourOfDay]),       unsignedOf([date minuteOfHour]),
            unsignedOf([date secondOfMinute]),  0};
}

/// 0 when the clock cannot be read.
std::uint32_t millisecondsOfClock() {
    timeval now{};
    if (gettimeofday(&now, nullptr) != 0)
        return 0;
    return static_cast<std::uint32_t>(now.tv_usec / 1000);
}

/// By its own description, which says in which zone the fields are.
ULATime timeOf(NSDate* date) {
    NSString* const description = [date description];
    if (description == nil)
        return {};
    NSCalendarDate* const calendarDate =
        [[[NSCalendarDate alloc] initWithString:description] autorelease];
    return fieldsOf(calendarDate);
}

/// A date among the file's attributes. Bytes that are no text name no file.
ULATime fileTime(const std::string& path, NSString* attribute) {
    const ScopedARPool pool;
    NSString* const text = [NSString fromStdString:path];
    if (text == nil)
        return {};
    NSDictionary* const attributes = [[NSFileManager defaultManager] fileAttributesAtPath:text
                                                                             traverseLink:YES];
    return timeOf([attributes objectForKey:attribute]);
}

}  // namespace

ULATime ULATime::fromCurrentTime(bool localTime) {
    const ScopedARPool pool;
    NSCalendarDate* const now = [NSCalendarDate date];
    if (localTime)
        [now setTimeZone:[NSTimeZone localTimeZone]];
    ULATime time = fieldsOf(now);
    // A second look at the clock, on purpose: callers depend on its whole milliseconds. Where a
    // second ends between the two, the time is nearly a second early.
    time.milliOfSecond = millisecondsOfClock();
    return time;
}

// The two read crossed attributes on purpose: callers depend on it.

ULATime ULATime::fromFileModificationTime(bool, const std::string& path) {
    return fileTime(path, NSFileCreationDate);
}

ULATime ULATime::fromFileCreationTime(bool, const std::string& path) {
    return fileTime(path, NSFileModificationDate);
}

}  // namespace tav::ula
