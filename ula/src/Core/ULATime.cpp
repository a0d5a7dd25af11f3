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

bool isDecimalDigit(char character) {
    return character >= '0' && character <= '9';
}

/// As `atoi` converts a piece. Pieces are short: nothing overflows.
std::uint32_t convert(std::string_view piece) {
    std::size_t i = 0;
    while (i < piece.size() && isBlank(piece[i]))
        ++i;
    const bool isNegative = i < piece.size() && piece[i] == '-';
    if (i < piece.size() && (piece[i] == '-' || piece[i] == '+'))
        ++i;
    std::int32_t value = 0;
    for (; i < piece.size() && isDecimalDigit(piece[i]); ++i)
        value = value * 10 + (piece[i] - '0');
    return static_cast<std::uint32_t>(isNegative ? -value : value);
}

/// Numbers of two digits, and whether they were all digits: asked once for all of them.
class Digits {
public:
    explicit Digits(const char* text) : _text(text) {}

    std::uint32_t two(std::size_t at) {
        const std::uint32_t tens = digit(at);
        const std::uint32_t ones = digit(at + 1);
        _areOthers |= unsigned(tens > 9) | unsigned(ones > 9);
        return tens * 10 + ones;
    }
    bool areAll() const { return _areOthers == 0; }

private:
    std::uint32_t digit(std::size_t at) const {
        return std::uint32_t(static_cast<unsigned char>(_text[at])) - '0';
    }

    const char* _text;
    unsigned _areOthers = 0;
};

/// False, with anything in the fields, where a piece is not all digits.
bool readDigits(const char* text, ULATimeStruct& fields) {
    Digits digits(text);
    fields.year = digits.two(0) * 100 + digits.two(2);
    fields.monthOfYear = digits.two(5);
    fields.dayOfMonth = digits.two(8);
    fields.hourOfDay = digits.two(11);
    fields.minuteOfHour = digits.two(14);
    fields.secondOfMinute = digits.two(17);
    return digits.areAll();
}

void readPieces(std::string_view text, ULATimeStruct& fields) {
    fields.year = convert(text.substr(0, 4));
    fields.monthOfYear = convert(text.substr(5, 2));
    fields.dayOfMonth = convert(text.substr(8, 2));
    fields.hourOfDay = convert(text.substr(11, 2));
    fields.minuteOfHour = convert(text.substr(14, 2));
    fields.secondOfMinute = convert(text.substr(17, 2));
}

bool needsNoCarry(const ULATimeStruct& fields) {
    return signedOf(fields.year) > 0 && fields.hourOfDay < 24 && fields.minuteOfHour < 60 &&
           fields.secondOfMinute < 60 &&
           isCivilDate(fields.year, fields.monthOfYear, fields.dayOfMonth);
}

ULATimeStruct carried(const ULATimeStruct& fields) {
    const CivilTime time =
        normalizeCivilTime({signedOf(fields.year), signedOf(fields.monthOfYear),
                            signedOf(fields.dayOfMonth), signedOf(fields.hourOfDay),
                            signedOf(fields.minuteOfHour), signedOf(fields.secondOfMinute)});
    // Before the common era there is no year that could be told.
    const std::uint32_t year = time.year > 0 ? static_cast<std::uint32_t>(time.year) : 0;
    return {year,      time.month,  time.day,    time.dayOfWeek,
            time.hour, time.minute, time.second, fields.milliOfSecond};
}

/// As the platform's calendar has it, in UTC. In place: a copy would cost more than the rest.
void normalize(ULATimeStruct& fields) {
    if (needsNoCarry(fields))
        fields.dayOfWeek = dayOfWeek(fields.year, fields.monthOfYear, fields.dayOfMonth);
    else
        fields = carried(fields);
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
    : ULATimeStruct(aYear, aMonth, aDay, 0, anHour, aMinute, aSecond, aMillisecond) {
    normalize(*this);
}

ULATime ULATime::fromShootingDateString(std::string_view text) {
    constexpr std::size_t kShortest = 19;
    constexpr std::size_t kShortestWithMilliseconds = 22;
    ULATime time;
    if (text.size() < kShortest)
        return time;
    if (!readDigits(text.data(), time))
        readPieces(text, time);
    // From where the point of a fraction stands, on purpose: callers depend on it.
    if (text.size() >= kShortestWithMilliseconds)
        time.milliOfSecond = convert(text.substr(19, 2));
    normalize(time);
    return time;
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
