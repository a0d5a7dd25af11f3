// SPDX-License-Identifier: MIT
#include "CoreServices/DigitRun.h"

#include <string>

namespace coreservices {

namespace {

// The second byte of a number's weight tells how it goes on: 2-75 is the number itself, 76-115 and
// 116-131 begin numbers of two and three places to the base 254, 132 and up count pairs of digits.
constexpr uint32_t kOnePlace = 74;
constexpr uint32_t kTwoPlaces = 40 * 254;
constexpr uint32_t kThreePlaces = 16 * 254 * 254;
constexpr uint32_t kSmallNumbers = kOnePlace + kTwoPlaces + kThreePlaces;
constexpr size_t kSmallDigits = 7;

uint32_t smallWeight(uint32_t value) {
    if (value < kOnePlace)
        return (2 + value) << 16;
    value -= kOnePlace;
    if (value < kTwoPlaces)
        return (76 + value / 254) << 16 | (2 + value % 254) << 8;
    value -= kTwoPlaces;
    return (116 + value / (254 * 254)) << 16 | (2 + value / 254 % 254) << 8 | (2 + value % 254);
}

// Gathers bytes into weights of three bytes behind the lead.
class WeightPacker {
public:
    WeightPacker(KeyLevels& levels, uint32_t lead) : _levels(levels), _lead(lead), _weight(lead) {}

    void put(uint32_t byte) {
        if (_shift == 0)
            flush();
        _shift -= 8;
        _weight |= byte << _shift;
    }

    void flush() {
        _levels.addPrimary(_weight);
        _levels.addSecondary(kCommonSecondary);
        _weight = _lead;
        _shift = 24;
    }

private:
    KeyLevels& _levels;
    uint32_t _lead;
    uint32_t _weight;
    unsigned _shift = 24;
};

}  // namespace

int DigitRun::compare(const DigitRun& other) const {
    if (length() != other.length())
        return length() < other.length() ? -1 : 1;
    return std::char_traits<char16_t>::compare(_digits, other._digits, length());
}

void DigitRun::addTo(KeyLevels& levels, uint32_t lead) const {
    if (length() > kSmallDigits)
        return addLarge(levels, lead);
    uint32_t value = 0;
    for (const char16_t* digit = _digits; digit != _end; ++digit)
        value = value * 10 + (static_cast<uint32_t>(*digit) - u'0');
    if (value >= kSmallNumbers)
        return addLarge(levels, lead);
    levels.addPrimary(lead | smallWeight(value));
    levels.addSecondary(kCommonSecondary);
}

// Pairs of digits, 11 and up by twos, the last one less by one so that a longer number stands
// behind its own beginning; pairs of zeros at the end say nothing that the count of pairs does not.
void DigitRun::addLarge(KeyLevels& levels, uint32_t lead) const {
    size_t pairs = (length() + 1) / 2;
    WeightPacker packer(levels, lead);
    packer.put(static_cast<uint32_t>(132 - 4 + pairs));
    const char16_t* end = _end;
    while (end[-1] == u'0' && end[-2] == u'0')
        end -= 2;
    const char16_t* digit = _digits;
    uint32_t tens = length() % 2 == 1 ? 0 : static_cast<uint32_t>(*digit++ - u'0');
    for (;;) {
        uint32_t pair = 11 + 2 * (tens * 10 + static_cast<uint32_t>(*digit++ - u'0'));
        if (digit == end) {
            packer.put(pair - 1);
            break;
        }
        packer.put(pair);
        tens = static_cast<uint32_t>(*digit++ - u'0');
    }
    packer.flush();
}

}  // namespace coreservices
