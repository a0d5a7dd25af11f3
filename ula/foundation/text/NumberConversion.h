// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/text/FastString.h"

#include <cstdint>

namespace tav::text {

/// How a number's text is read. There is one way: "." is the decimal point and nothing groups
/// digits, whatever the user's locale.
enum LocaleSetting { LocaleIndependent = 0 };

/// The text of `value` in `base` (2 to 36; lower-case digits). Fails: another base gives "".
TAV_FOUNDATION_API String itostr(int value, int base);
/// The shortest text that reads back to the same bits; "inf", "-inf", "nan" and, for a NaN that
/// is not the usual one, "nan(0x…)" with its bits.
TAV_FOUNDATION_API String dtostr(double value);
/// The longest text `dtostr` gives, in bytes.
constexpr std::size_t kLongestDoubleText = 32;
/// As `dtostr`, into `buffer` of at least `kLongestDoubleText` bytes; returns the end of the text.
TAV_FOUNDATION_API char* writeDouble(char* buffer, double value);

/// Each reads the whole text, blanks (space, tab, line ends) around it allowed, a "+" too.
/// Fails: false, and `result` untouched, when it is no number or out of the type's range.
TAV_FOUNDATION_API bool parseInt(const String& text, int& result);
TAV_FOUNDATION_API bool parseUnsigned64(const String& text, int base, std::uint64_t& result);
TAV_FOUNDATION_API bool parseDouble(const String& text, double& result);

/// Fails: 0 where `parseDouble` fails.
TAV_FOUNDATION_API double strtod(const String& text, LocaleSetting locale = LocaleIndependent);
/// Fails: 0 where `parseUnsigned64` fails.
TAV_FOUNDATION_API std::uint64_t strtoui64(const String& text, int base);

}  // namespace tav::text
