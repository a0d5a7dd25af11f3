// SPDX-License-Identifier: MIT
#include "ula/ULATime.h"

#include "ula/src/Core/CivilCalendar.h"

#include <charconv>
#include <type_traits>

namespace tav::ula {

static_assert(std::is_trivially_copyable_v<ULATime> && sizeof(ULATime) == 32);

namespace {

std::int32_t signedOf(std::uint32_t value) {
    return static_cast<std::int32_t>(value);
}

int orderOf(std::uint32_t left, std::uint32_t right) {
    return left < right ? -1 : 1;
}

bool isBlank(char character) {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

/// As `atoi` reads a piece that is not all digits. Pieces are short: nothing overflows.
std::int32_t convertSlowly(const char* begin, const char* end) {
    while (begin != end && isBlank(*begin))
        ++begin;
    const bool isNegative = begin != end && *begin == '-';
    if (begin != end && (*begin == '-' || *begin == '+'))
        ++begin;
    std::int32_t value = 0;
    for (; begin != end && isDigit(*begin); ++begin)
        value = value * 10 + (*begin - '0');
    return isNegative ? -value : value;
}

template <int Length>
std::int32_t convert(const char* piece) {
    std::int32_t value = 0;
    for (int i = 0; i < Length; ++i) {
        if (!isDigit(piece[i]))
            return convertSlowly(piece, piece + Length);
        value = value * 10 + (piece[i] - '0');
    }
    return value;
}

ULATimeStruct normalized(const CivilFields& fields, std::uint32_t millisecond) {
    const CivilTime time = normalizeCivilTime(fields);
    // Before the common era there is no year that could be told.
    const std::uint32_t year = time.date.year > 0 ? static_cast<std::uint32_t>(time.date.year) : 0;
    return {year,      time.date.month, time.date.day, time.dayOfWeek,
            time.hour, time.minute,     time.second,   millisecond};
}

void append(std::string& text, std::string_view label, std::uint32_t value) {
    char digits[10];
    const char* const end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    text.append(label).append(digits, static_cast<std::size_t>(end - digits)).push_back('\n');
}

}  // namespace

ULATime::ULATime(std::uint32_t aYear, std::uint32_t aMonth, std::uint32_t aDay,
                 std::uint32_t anHour, std::uint32_t aMinute, std::uint32_t aSecond,
                 std::uint32_t aMillisecond)
    : ULATimeStruct(normalized({signedOf(aYear), signedOf(aMonth), signedOf(aDay), signedOf(anHour),
                                signedOf(aMinute), signedOf(aSecond)},
                               aMillisecond)) {
}

ULATime ULATime::fromShootingDateString(std::string_view text) {
    constexpr std::size_t kShortest = 19;
    constexpr std::size_t kShortestWithMilliseconds = 22;
    if (text.size() < kShortest)
        return {};
    const char* const begin = text.data();
    // From where the point of a fraction stands, on purpose: callers depend on it.
    const std::int32_t millisecond =
        text.size() >= kShortestWithMilliseconds ? convert<2>(begin + 19) : 0;
    return normalized({convert<4>(begin), convert<2>(begin + 5), convert<2>(begin + 8),
                       convert<2>(begin + 11), convert<2>(begin + 14), convert<2>(begin + 17)},
                      static_cast<std::uint32_t>(millisecond));
}

int ULATime::compare(const ULATime& other) const {
    if (year != other.year)
        return orderOf(year, other.year);
    if (monthOfYear != other.monthOfYear)
        return orderOf(monthOfYear, other.monthOfYear);
    if (dayOfMonth != other.dayOfMonth)
        return orderOf(dayOfMonth, other.dayOfMonth);
    if (hourOfDay != other.hourOfDay)
        return orderOf(hourOfDay, other.hourOfDay);
    if (minuteOfHour != other.minuteOfHour)
        return orderOf(minuteOfHour, other.minuteOfHour);
    if (secondOfMinute != other.secondOfMinute)
        return orderOf(secondOfMinute, other.secondOfMinute);
    if (milliOfSecond != other.milliOfSecond)
        return orderOf(milliOfSecond, other.milliOfSecond);
    return 0;
}

bool ULATime::weakValidationCheck() const {
    return year != 0 && monthOfYear >= 1 && monthOfYear <= 12 && dayOfMonth >= 1 &&
           dayOfMonth <= 31 && dayOfWeek <= 6 && hourOfDay <= 23 && minuteOfHour <= 59 &&
           secondOfMinute <= 59 && milliOfSecond <= 999;
}

std::string ULATime::toString() const {
    std::string text;
    text.reserve(160);
    append(text, "year: ", year);
    append(text, "monthOfYear: ", monthOfYear);
    append(text, "dayOfMonth: ", dayOfMonth);
    append(text, "dayOfWeek: ", dayOfWeek);
    append(text, "hourOfDay: ", hourOfDay);
    append(text, "minuteOfHour: ", minuteOfHour);
    append(text, "secondOfMinute: ", secondOfMinute);
    append(text, "milliOfSecond: ", milliOfSecond);
    return text;
}

}  // namespace tav::ula
