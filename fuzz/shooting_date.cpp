// SPDX-License-Identifier: MIT
// Reads the text by positions and strictly, and its first bytes as seven components. The strict
// reader must give valid dates only, which read back as they were; where it reads a text of plain
// layout, the other must find the same; and a carried time must stay what it is when it is carried
// again.
#include "fuzz/Expect.h"
#include "ula/ShootingDate.h"
#include "ula/ULATime.h"

#include <cstdint>
#include <cstring>

namespace {

using namespace tav::ula;

/// With the day of the week, which is never compared.
bool isSame(const ULATime& left, const ULATime& right) {
    return left == right && left.dayOfWeek == right.dayOfWeek;
}

ULATime again(const ULATime& time) {
    return ULATime(time.year, time.monthOfYear, time.dayOfMonth, time.hourOfDay, time.minuteOfHour,
                   time.secondOfMinute, time.milliOfSecond);
}

void checkCarried(const ULATime& time) {
    // The year 0 stands for every year before the common era, and those from 2^31 on are taken for
    // negative ones.
    if (time.year != 0 && time.year < 0x80000000u)
        expect(isSame(time, again(time)));
    ULATime withoutFraction = time;
    withoutFraction.milliOfSecond = 0;
    expect(withoutFraction.weakValidationCheck() == (time.year != 0));
}

void checkComponents(const std::uint8_t* data, std::size_t size) {
    std::uint32_t parts[7] = {};
    std::memcpy(parts, data, size < sizeof parts ? size : sizeof parts);
    checkCarried(ULATime(parts[0], parts[1], parts[2], parts[3], parts[4], parts[5], parts[6]));
}

void checkDate(const ShootingDate& date) {
    expect(date.time.weakValidationCheck() && date.time.year <= 9999);
    expect(isSame(date.time, again(date.time)));
    expect(date.fractionDigits <= 9 && (date.fractionDigits != 0) == date.nanoOfSecond.has_value());
    expect(date.nanoOfSecond.value_or(0) / 1'000'000 == date.time.milliOfSecond);
    const auto utc = date.toUtc();
    expect(!utc || (date.utcOffsetMinutes && utc->weakValidationCheck()));
    expect(parseShootingDate(date.toString()) == date);
    ULATime byPositions = ULATime::fromShootingDateString(date.toString());
    byPositions.milliOfSecond = date.time.milliOfSecond;
    expect(isSame(byPositions, date.time));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    checkComponents(data, size);
    const ULATime time = ULATime::fromShootingDateString(text);
    expect(!time.toString().empty());
    if (size >= 19)
        checkCarried(time);
    if (const auto date = parseShootingDate(text))
        checkDate(*date);
    const std::string_view first = text.substr(0, size / 2);
    const std::string_view rest = text.substr(size / 2);
    if (const auto date =
            parseShootingDate(first, rest.substr(0, rest.size() / 2), rest.substr(rest.size() / 2)))
        checkDate(*date);
    return 0;
}
