// SPDX-License-Identifier: MIT
// Arithmetic of the proleptic Gregorian calendar, for years of any size.
#pragma once

#include <cstdint>

namespace tav::ula {

struct CivilDate {
    std::int64_t year = 0;  ///< 0 is the year before 1
    std::uint32_t month = 0;
    std::uint32_t day = 0;
};

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
    CivilDate date;
    std::uint32_t dayOfWeek = 0;  ///< 0 is Sunday
    std::uint32_t hour = 0;
    std::uint32_t minute = 0;
    std::uint32_t second = 0;
};

/// Whether there is such a day.
bool isCivilDate(const CivilDate& date);
/// Of a day that there is; 0 is Sunday.
std::uint32_t dayOfWeek(const CivilDate& date);

/// The time that the fields stand for, with what is out of its range carried.
CivilTime normalizeCivilTime(const CivilFields& fields);

}  // namespace tav::ula
