// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"
#include "ula/ULATime.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tav::ula {

/// When a picture was taken, as far as its camera told: always to the second, often with a
/// fraction of it, and since some years with the time zone. A plain value.
/// Thread: any.
struct ULA_API ShootingDate {
    /// As the camera's clock showed it, valid and with its day of the week. `milliOfSecond` is that
    /// of the fraction, rounded down, or 0.
    ULATime time;
    /// The fraction of the second, rounded down; nothing where none was told. Units: nanoseconds.
    std::optional<std::uint32_t> nanoOfSecond;
    /// How many digits the fraction had, at most 9: .5 and .500 were not told with the same care.
    std::uint32_t fractionDigits = 0;
    /// How far the camera's clock was ahead of UTC; nothing where it was not told.
    /// Units: minutes, from -840 to 840.
    std::optional<std::int32_t> utcOffsetMinutes;

    /// The same moment in UTC, with its day of the week; times of cameras in several zones can be
    /// ordered by it.
    /// Fails: nothing without an offset, or before the year 1.
    std::optional<ULATime> toUtc() const;

    /// In ISO 8601, "2009-03-15T10:20:30.45+02:00", with no more than was told. Reading it with
    /// `parseShootingDate` gives this value again.
    std::string toString() const;

    /// Told alike; the same moment in two time zones is not.
    bool operator==(const ShootingDate&) const = default;
};

/// Reads a shooting date strictly: "2009:03:15 10:20:30" as EXIF has it, also with dashes in the
/// date and with a "T" in the middle as ISO 8601 has it, then, if any, a fraction behind a point or
/// comma (digits beyond the ninth are dropped), then, if any, "Z", "+02:00" or "+0200". Blanks may
/// stand before the zone; blanks and zero bytes around it all do not count.
///
/// `ULATime::fromShootingDateString` in contrast reads any text.
/// Fails: nothing for any other text, such as a date that a camera left blank or wrote with zeros,
/// and for what no calendar or clock shows: the 29th of February of 2009, the year 0, 24 o'clock, a
/// 60th second (cameras know no leap seconds, and `ULATime` has no place for one), or an offset
/// beyond 14 hours.
/// Thread: any.
ULA_API std::optional<ShootingDate> parseShootingDate(std::string_view text);

/// The same from the three texts in which EXIF keeps it: DateTimeOriginal, SubSecTimeOriginal (the
/// digits behind the point) and OffsetTimeOriginal. What the first text has of its own counts
/// before the other two; one of these that is blank or makes no sense tells nothing.
/// Fails: nothing, where the first text alone would give nothing.
ULA_API std::optional<ShootingDate>
parseShootingDate(std::string_view dateTime, std::string_view subSecond, std::string_view offset);

}  // namespace tav::ula
