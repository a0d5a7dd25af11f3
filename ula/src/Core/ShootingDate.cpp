// SPDX-License-Identifier: MIT
#include "ula/ShootingDate.h"

#include "ula/src/Core/CivilCalendar.h"

#include <cstdio>

namespace tav::ula {

namespace {

constexpr std::uint32_t kMostFractionDigits = 9;
constexpr std::int32_t kLargestOffsetMinutes = 14 * 60;

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

bool isPadding(char character) {
    return character == ' ' || character == '\0';
}

std::string_view withoutPadding(std::string_view text) {
    while (!text.empty() && isPadding(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isPadding(text.back()))
        text.remove_suffix(1);
    return text;
}

/// Takes a text from its begin on. What is not there is not taken.
class Cursor {
public:
    explicit Cursor(std::string_view text) : _rest(text) {}

    bool atEnd() const { return _rest.empty(); }

    /// Takes one of the characters and gives it; 0 when none of them comes next.
    char takeAny(std::string_view characters) {
        if (_rest.empty() || characters.find(_rest.front()) == std::string_view::npos)
            return 0;
        const char taken = _rest.front();
        _rest.remove_prefix(1);
        return taken;
    }

    void takeBlanks() {
        while (takeAny(" ") != 0) {
        }
    }

    /// Takes all digits that come next.
    std::string_view takeDigits() {
        std::size_t length = 0;
        while (length < _rest.size() && isDigit(_rest[length]))
            ++length;
        const std::string_view digits = _rest.substr(0, length);
        _rest.remove_prefix(length);
        return digits;
    }

    /// Takes a number of exactly so many digits.
    bool takeNumber(std::size_t length, std::uint32_t* number) {
        if (_rest.size() < length)
            return false;
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < length; ++i) {
            if (!isDigit(_rest[i]))
                return false;
            value = value * 10 + static_cast<std::uint32_t>(_rest[i] - '0');
        }
        _rest.remove_prefix(length);
        *number = value;
        return true;
    }

private:
    std::string_view _rest;
};

bool takeDate(Cursor& cursor, ULATime* time) {
    if (!cursor.takeNumber(4, &time->year))
        return false;
    const char separator = cursor.takeAny(":-");
    return separator != 0 && cursor.takeNumber(2, &time->monthOfYear) &&
           cursor.takeAny({&separator, 1}) != 0 && cursor.takeNumber(2, &time->dayOfMonth);
}

bool takeClock(Cursor& cursor, ULATime* time) {
    return cursor.takeNumber(2, &time->hourOfDay) && cursor.takeAny(":") != 0 &&
           cursor.takeNumber(2, &time->minuteOfHour) && cursor.takeAny(":") != 0 &&
           cursor.takeNumber(2, &time->secondOfMinute);
}

/// False where there is no such day or no such time of the day.
bool complete(ULATime* time) {
    if (time->year == 0 || time->hourOfDay > 23 || time->minuteOfHour > 59 ||
        time->secondOfMinute > 59 || !isCivilDate(time->year, time->monthOfYear, time->dayOfMonth))
        return false;
    time->dayOfWeek = dayOfWeek(time->year, time->monthOfYear, time->dayOfMonth);
    return true;
}

bool setFraction(std::string_view digits, ShootingDate* date) {
    if (digits.empty())
        return false;
    digits = digits.substr(0, kMostFractionDigits);
    std::uint32_t nanoseconds = 0;
    for (std::uint32_t i = 0; i < kMostFractionDigits; ++i)
        nanoseconds = nanoseconds * 10 +
                      (i < digits.size() ? static_cast<std::uint32_t>(digits[i] - '0') : 0);
    date->nanoOfSecond = nanoseconds;
    date->fractionDigits = static_cast<std::uint32_t>(digits.size());
    date->time.milliOfSecond = nanoseconds / 1'000'000;
    return true;
}

bool takeOffset(Cursor& cursor, ShootingDate* date) {
    const char sign = cursor.takeAny("+-Zz");
    std::uint32_t hours = 0;
    std::uint32_t minutes = 0;
    if (sign == '+' || sign == '-') {
        if (!cursor.takeNumber(2, &hours))
            return false;
        cursor.takeAny(":");
        if (!cursor.takeNumber(2, &minutes))
            return false;
    }
    const auto offset = static_cast<std::int32_t>(hours * 60 + minutes);
    if (sign == 0 || minutes > 59 || offset > kLargestOffsetMinutes)
        return false;
    date->utcOffsetMinutes = sign == '-' ? -offset : offset;
    return true;
}

/// The SubSecTime of EXIF: digits only.
void readSubSecond(std::string_view text, ShootingDate* date) {
    Cursor cursor(withoutPadding(text));
    const std::string_view digits = cursor.takeDigits();
    if (cursor.atEnd())
        setFraction(digits, date);
}

/// The OffsetTime of EXIF.
void readOffset(std::string_view text, ShootingDate* date) {
    Cursor cursor(withoutPadding(text));
    if (!takeOffset(cursor, date) || !cursor.atEnd())
        date->utcOffsetMinutes.reset();
}

void append(std::string& text, const char* format, std::uint32_t first, std::uint32_t second,
            std::uint32_t third) {
    char piece[40];
    const int length = std::snprintf(piece, sizeof piece, format, first, second, third);
    text.append(piece, static_cast<std::size_t>(length));
}

}  // namespace

std::optional<ULATime> ShootingDate::toUtc() const {
    if (!utcOffsetMinutes)
        return std::nullopt;
    const auto minutes = static_cast<std::uint32_t>(std::int64_t(time.minuteOfHour) -
                                                    std::int64_t(*utcOffsetMinutes));
    const ULATime utc(time.year, time.monthOfYear, time.dayOfMonth, time.hourOfDay, minutes,
                      time.secondOfMinute, time.milliOfSecond);
    return utc.year == 0 ? std::nullopt : std::optional(utc);
}

std::string ShootingDate::toString() const {
    std::string text;
    append(text, "%04u-%02u-%02u", time.year, time.monthOfYear, time.dayOfMonth);
    append(text, "T%02u:%02u:%02u", time.hourOfDay, time.minuteOfHour, time.secondOfMinute);
    if (nanoOfSecond && fractionDigits != 0) {
        const std::string digits = std::to_string(1'000'000'000 + *nanoOfSecond).substr(1);
        text += '.' + digits.substr(0, fractionDigits);
    }
    if (utcOffsetMinutes) {
        const bool isBehind = *utcOffsetMinutes < 0;
        const auto offset = static_cast<std::uint32_t>(isBehind ? -std::int64_t(*utcOffsetMinutes)
                                                                : std::int64_t(*utcOffsetMinutes));
        append(text, isBehind ? "-%02u:%02u" : "+%02u:%02u", offset / 60, offset % 60, 0);
    }
    return text;
}

std::optional<ShootingDate> parseShootingDate(std::string_view text) {
    ShootingDate date;
    Cursor cursor(withoutPadding(text));
    if (!takeDate(cursor, &date.time) || cursor.takeAny(" T") == 0 ||
        !takeClock(cursor, &date.time) || !complete(&date.time))
        return std::nullopt;
    if (cursor.takeAny(".,") != 0 && !setFraction(cursor.takeDigits(), &date))
        return std::nullopt;
    cursor.takeBlanks();
    if (!cursor.atEnd() && (!takeOffset(cursor, &date) || !cursor.atEnd()))
        return std::nullopt;
    return date;
}

std::optional<ShootingDate> parseShootingDate(std::string_view dateTime, std::string_view subSecond,
                                              std::string_view offset) {
    std::optional<ShootingDate> date = parseShootingDate(dateTime);
    if (!date)
        return date;
    if (!date->nanoOfSecond)
        readSubSecond(subSecond, &*date);
    if (!date->utcOffsetMinutes)
        readOffset(offset, &*date);
    return date;
}

}  // namespace tav::ula
