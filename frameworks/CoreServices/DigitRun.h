// SPDX-License-Identifier: MIT
#pragma once

#include "CoreServices/KeyLevels.h"

#include <cstddef>

namespace coreservices {

// A run of ASCII digits, which weighs as the number it writes.
class DigitRun {
public:
    // Longer numbers are weighed in pieces; ICU sees to those.
    static constexpr size_t kMaxDigits = 254;

    // `start` is at a digit.
    DigitRun(const char16_t* start, const char16_t* end) : _digits(start), _end(start) {
        while (_end != end && isDigit(*_end))
            ++_end;
        while (_digits != _end && *_digits == u'0')
            ++_digits;
    }

    static bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

    const char16_t* end() const { return _end; }
    size_t length() const { return static_cast<size_t>(_end - _digits); }
    bool isTooLong() const { return length() > kMaxDigits; }

    // Negative, zero or positive as the numbers compare.
    int compare(const DigitRun& other) const;

    // Adds the number's weights, all of which begin with `lead` and are common on the second level.
    void addTo(KeyLevels& levels, uint32_t lead) const;

private:
    void addLarge(KeyLevels& levels, uint32_t lead) const;

    const char16_t* _digits;  // the first one that counts
    const char16_t* _end;
};

}  // namespace coreservices
