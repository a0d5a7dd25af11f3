// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tav::ula {

/// The fields of a calendar time, as whoever fills them leaves them: nothing is checked.
struct ULATimeStruct {
    ULATimeStruct() = default;
    ULATimeStruct(std::uint32_t aYear, std::uint32_t aMonth, std::uint32_t aDay,
                  std::uint32_t aDayOfWeek, std::uint32_t anHour, std::uint32_t aMinute,
                  std::uint32_t aSecond, std::uint32_t aMillisecond)
        : year(aYear),
          monthOfYear(aMonth),
          dayOfMonth(aDay),
          dayOfWeek(aDayOfWeek),
          hourOfDay(anHour),
          minuteOfHour(aMinute),
          secondOfMinute(aSecond),
          milliOfSecond(aMillisecond) {}

    std::uint32_t year = 0;            ///< of the common era; 0 is not valid
    std::uint32_t monthOfYear = 0;     ///< 1 to 12
    std::uint32_t dayOfMonth = 0;      ///< 1 to 31
    std::uint32_t dayOfWeek = 0;       ///< 0 to 6; 0 is Sunday
    std::uint32_t hourOfDay = 0;       ///< 0 to 23
    std::uint32_t minuteOfHour = 0;    ///< 0 to 59
    std::uint32_t secondOfMinute = 0;  ///< 0 to 59
    std::uint32_t milliOfSecond = 0;   ///< 0 to 999
};

/// A calendar time down to milliseconds, a plain value without a time zone: in which zone the
/// fields are, each maker says. Times are ordered by all fields but `dayOfWeek`, which follows
/// from the date and is never compared.
///
/// Nothing here throws for a time that is wrong or cannot be had: it is all zero, or what the
/// garbage stands for, and `weakValidationCheck` tells.
/// Thread: any.
class ULA_API ULATime : public ULATimeStruct {
public:
    /// All zero, which is not valid.
    ULATime() = default;
    /// The fields as they are.
    ULATime(const ULATimeStruct& fields) : ULATimeStruct(fields) {}
    /// A time in UTC. What is out of its range is carried, so that month 13 is January of the next
    /// year; the day of the week is computed, and the milliseconds are kept as they are. Numbers
    /// from 2^31 on count as the negative ones that they are as `int`. A time before the common
    /// era, such as the year 0 with month 0, has the year 0, and so is not valid.
    ULATime(std::uint32_t aYear, std::uint32_t aMonth, std::uint32_t aDay, std::uint32_t anHour,
            std::uint32_t aMinute, std::uint32_t aSecond, std::uint32_t aMillisecond);

    /// Now: in the system's local time zone if `localTime`, else in the process's default one,
    /// which is the local one unless the program has chosen another. Never in UTC on its own.
    static ULATime fromCurrentTime(bool localTime);

    /// When the file was made, not when it was changed: the two are crossed, and callers depend on
    /// it. To the second, with `milliOfSecond` 0, in the process's default time zone. Links are
    /// followed; where the file system keeps no birth times it is the time of the last change, of
    /// content or attributes, whichever was earlier. The first argument is ignored. `path` is
    /// UTF-8. Fails: all zero, for what is not there or out of reach.
    static ULATime fromFileModificationTime(bool, const std::string& path);
    /// When the file was last changed, not when it was made; the rest as above.
    static ULATime fromFileCreationTime(bool, const std::string& path);

    /// Reads YYYY:MM:DD HH:MM:SS by its positions, whatever the separators are, as UTC. Each piece
    /// is converted as by `atoi` and the result carried as above. Milliseconds are what the two
    /// characters straight after the seconds give, if there are three or more: 12 for "…30123",
    /// but 0 for "…30.45". `parseShootingDate` reads fractions and time zones, and refuses garbage.
    /// Fails: all zero, for fewer than 19 characters.
    static ULATime fromShootingDateString(std::string_view text);

    /// -1 when this time is the earlier one, 1 when it is the later one, else 0.
    int compare(const ULATime& other) const;

    bool operator==(const ULATime& other) const { return compare(other) == 0; }
    bool operator!=(const ULATime& other) const { return compare(other) != 0; }
    bool operator<(const ULATime& other) const { return compare(other) < 0; }
    bool operator<=(const ULATime& other) const { return compare(other) <= 0; }
    bool operator>(const ULATime& other) const { return compare(other) > 0; }
    bool operator>=(const ULATime& other) const { return compare(other) >= 0; }

    /// Whether every field is in its range. The day is not held against the length of its month:
    /// the 31st of February passes.
    bool weakValidationCheck() const;

    /// Eight lines for diagnostics, "year: 2009" the first, each ended by a line feed.
    std::string toString() const;
};

}  // namespace tav::ula
