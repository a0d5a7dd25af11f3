// SPDX-License-Identifier: MIT
// Arithmetic of the proleptic Gregorian calendar, for years of any size.
#pragma once

#include <cstdint>

namespace tav::ula {

constexpr bool isLeapYear(std::uint32_t year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

/// Whether there is such a day.
constexpr bool isCivilDate(std::uint32_t year, std::uint32_t month, std::uint32_t day) {
    constexpr std::uint32_t kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (month - 1 >= 12)
        return false;
    return day - 1 < kDays[month - 1] || (month == 2 && day == 29 && isLeapYear(year));
}

/// Of a day that there is, from the year 1 on; 0 is Sunday.
constexpr std::uint32_t dayOfWeek(std::uint32_t year, std::uint32_t month, std::uint32_t day) {
    // How much later in the week the last day before the month is than that of the year, and one
    // day less behind February, since there the year counts as over.
    constexpr std::uint32_t kShift[] = {0, 3, 2, 5, 0, 3, 5, 1, 4, 6, 2, 4};
    const std::uint32_t full = month <= 2 ? year - 1 : year;
    return (full + full / 4 - full / 100 + full / 400 + kShift[month - 1] + day) % 7;
}

/// A time whose fields may be anything.
struct CivilFields {
    std::int32_t year = 0;
    std::int32_t month = 0;
    std::int32_t day = 0;
    std::int32_t hour = 0;
    std::int32_t minute = 0;
    std::int32_t second = 0;
};

struct CivilTime {
    std::int64_t year = 0;  ///< 0 is the year before 1
    std::uint32_t month = 0;
    std::uint32_t day = 0;
    std::uint32_t dayOfWeek = 0;  ///< 0 is Sunday
    std::uint32_t hour = 0;
    std::uint32_t minute = 0;
    std::uint32_t second = 0;
};

/// The time that the fields stand for, with what is out of its range carried.
CivilTime normalizeCivilTime(const CivilFields& fields);

}  // namespace tav::ula
