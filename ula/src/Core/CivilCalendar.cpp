// SPDX-License-Identifier: MIT
#include "ula/src/Core/CivilCalendar.h"

#include <chrono>

namespace tav::ula {

namespace {

using std::chrono::day;
using std::chrono::days;
using std::chrono::month;
using std::chrono::sys_days;
using std::chrono::weekday;
using std::chrono::year;
using std::chrono::year_month_day;

/// After 400 years the calendar begins anew, with the same day of the week.
constexpr std::int64_t kYearsOfCycle = 400;
constexpr std::int64_t kDaysOfCycle = 146'097;
static_assert(kDaysOfCycle % 7 == 0);
/// Where a cycle begins: a Saturday.
constexpr sys_days kBegin = year(2000) / month(1) / day(1);
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

/// The library's calendar has 16 bits for a year: these stand for all of them.
year yearOfCycle(std::int64_t value) {
    return year(static_cast<int>(2000 + divide(value, kYearsOfCycle).remainder));
}

/// The days since `kBegin`. The month must be one.
std::int64_t dayNumber(std::int64_t aYear, std::uint32_t aMonth) {
    const sys_days first = yearOfCycle(aYear) / month(aMonth) / day(1);
    const std::int64_t cycles = divide(aYear, kYearsOfCycle).quotient - 5;
    return cycles * kDaysOfCycle + (first - kBegin).count();
}

CivilDate dateOf(std::int64_t dayNumber) {
    const Division cycle = divide(dayNumber, kDaysOfCycle);
    const year_month_day date(kBegin + days(cycle.remainder));
    return {cycle.quotient * kYearsOfCycle + int(date.year()), unsigned(date.month()),
            unsigned(date.day())};
}

std::uint32_t dayOfWeekOf(std::int64_t dayNumber) {
    return static_cast<std::uint32_t>(divide(dayNumber + 6, 7).remainder);
}

std::uint32_t narrow(std::int64_t value) {
    return static_cast<std::uint32_t>(value);
}

/// Fields of 32 bits leave room for all of this in 64.
CivilTime carry(const CivilFields& fields) {
    const Division months = divide(std::int64_t(fields.month) - 1, kMonthsOfYear);
    const Division seconds =
        divide(std::int64_t(fields.hour) * 3600 + std::int64_t(fields.minute) * 60 + fields.second,
               kSecondsOfDay);
    const std::int64_t number =
        dayNumber(fields.year + months.quotient, narrow(months.remainder + 1)) + fields.day - 1 +
        seconds.quotient;
    return {dateOf(number), dayOfWeekOf(number), narrow(seconds.remainder / 3600),
            narrow(seconds.remainder / 60 % 60), narrow(seconds.remainder % 60)};
}

bool isBelow(std::int32_t value, std::uint32_t limit) {
    return static_cast<std::uint32_t>(value) < limit;
}

}  // namespace

bool isCivilDate(const CivilDate& date) {
    return date.month <= 12 && date.day <= 31 &&
           (yearOfCycle(date.year) / month(date.month) / day(date.day)).ok();
}

std::uint32_t dayOfWeek(const CivilDate& date) {
    return weekday(sys_days(yearOfCycle(date.year) / month(date.month) / day(date.day)))
        .c_encoding();
}

CivilTime normalizeCivilTime(const CivilFields& fields) {
    const CivilDate date{fields.year, static_cast<std::uint32_t>(fields.month),
                         static_cast<std::uint32_t>(fields.day)};
    // Nearly every time has nothing to be carried.
    if (isBelow(fields.hour, 24) && isBelow(fields.minute, 60) && isBelow(fields.second, 60) &&
        isCivilDate(date))
        return {date, dayOfWeek(date), static_cast<std::uint32_t>(fields.hour),
                static_cast<std::uint32_t>(fields.minute),
                static_cast<std::uint32_t>(fields.second)};
    return carry(fields);
}

}  // namespace tav::ula
