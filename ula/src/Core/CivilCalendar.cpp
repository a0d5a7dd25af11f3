// SPDX-License-Identifier: MIT
#include "ula/src/Core/CivilCalendar.h"

#include <chrono>

namespace tav::ula {

namespace {

using std::chrono::day;
using std::chrono::days;
using std::chrono::month;
using std::chrono::sys_days;
using std::chrono::year;
using std::chrono::year_month_day;

/// After 400 years the calendar begins anew, with the same day of the week. The library's calendar
/// has 16 bits for a year: those from 2000 on stand for all of them.
constexpr std::int64_t kYearsOfCycle = 400;
constexpr std::int64_t kDaysOfCycle = 146'097;
static_assert(kDaysOfCycle % 7 == 0);
/// A Saturday.
constexpr sys_days kFirstDay = year(2000) / month(1) / day(1);
constexpr std::int64_t kMonthsOfYear = 12;
constexpr std::int64_t kSecondsOfDay = 86'400;

/// Rounded down and what is left over, which is never negative.
struct Division {
    std::int64_t quotient;
    std::int64_t remainder;
};

constexpr Division divide(std::int64_t value, std::int64_t by) {
    const std::int64_t remainder = value % by;
    return remainder < 0 ? Division{value / by - 1, remainder + by}
                         : Division{value / by, remainder};
}

/// Of the first day of a month: the days since `kFirstDay`.
std::int64_t dayNumber(std::int64_t aYear, std::int64_t aMonth) {
    const Division cycle = divide(aYear - 2000, kYearsOfCycle);
    const sys_days first = year(static_cast<int>(2000 + cycle.remainder)) /
                           month(static_cast<unsigned>(aMonth)) / day(1);
    return cycle.quotient * kDaysOfCycle + (first - kFirstDay).count();
}

std::uint32_t narrow(std::int64_t value) {
    return static_cast<std::uint32_t>(value);
}

CivilTime timeOf(std::int64_t dayNumber, std::int64_t secondOfDay) {
    const Division cycle = divide(dayNumber, kDaysOfCycle);
    const year_month_day date(kFirstDay + days(cycle.remainder));
    return {cycle.quotient * kYearsOfCycle + int(date.year()),
            unsigned(date.month()),
            unsigned(date.day()),
            narrow(divide(dayNumber + 6, 7).remainder),
            narrow(secondOfDay / 3600),
            narrow(secondOfDay / 60 % 60),
            narrow(secondOfDay % 60)};
}

}  // namespace

// Fields of 32 bits leave room for all of this in 64.
CivilTime normalizeCivilTime(const CivilFields& fields) {
    const Division months = divide(std::int64_t(fields.month) - 1, kMonthsOfYear);
    const Division seconds =
        divide(std::int64_t(fields.hour) * 3600 + std::int64_t(fields.minute) * 60 + fields.second,
               kSecondsOfDay);
    const std::int64_t first = dayNumber(fields.year + months.quotient, months.remainder + 1);
    return timeOf(first + fields.day - 1 + seconds.quotient, seconds.remainder);
}

}  // namespace tav::ula
