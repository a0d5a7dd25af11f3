// SPDX-License-Identifier: MIT
#include "CoreServices/FastCompare.h"

#include "CoreServices/DigitRun.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace coreservices {

namespace {

constexpr uint32_t kTextEnds = 0;              // below every weight
constexpr uint32_t kNotCovered = 0xFFFFFFFFu;  // no weight: ICU keeps it for itself

// The weights of one text, a level at a time.
class Walker {
public:
    Walker(const CollationTable& table, const char16_t* at, const char16_t* end)
        : _table(table), _at(at), _end(end) {}

    // The next primary weight; a number gives the weight they all begin with.
    uint32_t nextPrimary() {
        for (;;) {
            while (_pending != _pendingEnd)
                if (uint32_t primary = _pending++->primary)
                    return primary;
            if (_at == _end)
                return kTextEnds;
            const CharacterPage& page = _table.page(*_at);
            const Character& character = page.characters[*_at & 0xFF];
            const char16_t* next = _at + 1;
            bool plain = (character.kind & (kSeveral | kDigit | kOutside)) == 0;
            if (!plain)
                next = takeSpecial(page, character);
            if (next == nullptr || (next != _end && refuses(character, *next)))
                return kNotCovered;
            _at = next;
            if (plain)
                return character.primary;
            if ((character.kind & kDigit) != 0)
                return _table.numberLead();
        }
    }

    // The next secondary weight. Only for texts whose primaries were all walked.
    uint32_t nextSecondary() {
        for (;;) {
            while (_pending != _pendingEnd)
                if (uint32_t secondary = _pending++->secondary)
                    return secondary;
            if (_at == _end)
                return kTextEnds;
            const CharacterPage& page = _table.page(*_at);
            const Character& character = page.characters[*_at & 0xFF];
            if ((character.kind & (kSeveral | kDigit)) == 0) {
                ++_at;
                return character.secondary;
            }
            _at = takeSpecial(page, character);
            // A long number weighs several elements, as many in the other text at this place.
            if ((character.kind & kDigit) != 0)
                return kCommonSecondary;
        }
    }

    // The number nextPrimary has just walked over.
    const DigitRun& number() const { return _number; }

private:
    bool refuses(const Character& character, char16_t next) const {
        return (character.refuses & _table.character(next).kind) != 0;
    }

    // Returns where the text goes on, or null when the character is not covered.
    const char16_t* takeSpecial(const CharacterPage& page, const Character& character) {
        if ((character.kind & kDigit) != 0) {
            _number = DigitRun(_at, _end);
            return _number.isTooLong() ? nullptr : _number.end();
        }
        if ((character.kind & kOutside) != 0)
            return nullptr;
        _pending = page.weights.data() + character.primary;
        _pendingEnd = _pending + character.secondary;
        return _at + 1;
    }

    const CollationTable& _table;
    const char16_t* _at;
    const char16_t* _end;
    const Weight* _pending = nullptr;
    const Weight* _pendingEnd = nullptr;
    DigitRun _number{nullptr, nullptr};
};

size_t commonPrefix(TextView left, TextView right) {
    size_t length = std::min(left.size(), right.size());
    size_t i = 0;
    for (; i + 4 <= length; i += 4) {
        uint64_t a, b;
        std::memcpy(&a, left.data() + i, sizeof a);
        std::memcpy(&b, right.data() + i, sizeof b);
        if (a != b)
            return i + static_cast<size_t>(std::countr_zero(a ^ b)) / 16;
    }
    while (i < length && left[i] == right[i])
        ++i;
    return i;
}

// The last place up to `start`, within the common prefix, from where both texts weigh what they
// weigh as parts of the whole; nothing when the characters there are not covered.
std::optional<size_t> safeStart(const CollationTable& table, TextView left, TextView right,
                                size_t start) {
    auto digitAt = [](TextView text, size_t i) {
        return i < text.size() && DigitRun::isDigit(text[i]);
    };
    auto kindAt = [&](TextView text, size_t i) {
        return i < text.size() ? table.character(text[i]).kind : 0;
    };
    for (;; --start) {
        if (start == 0)
            return start;
        const Character& before = table.character(left[start - 1]);
        if ((before.kind & kOutside) != 0 ||
            (before.refuses & (kindAt(left, start) | kindAt(right, start))) != 0)
            return std::nullopt;
        bool splitsNumber =
            DigitRun::isDigit(left[start - 1]) && (digitAt(left, start) || digitAt(right, start));
        if (!splitsNumber)
            return start;
    }
}

int sign(uint32_t left, uint32_t right) {
    return left < right ? -1 : 1;
}

// The primary weight of a character that has just one and takes it whatever follows; nothing of the
// kind gives kNotCovered.
uint32_t plainPrimary(const CollationTable& table, TextView text, size_t at) {
    const Character& character = table.character(text[at]);
    uint8_t next = at + 1 < text.size() ? table.character(text[at + 1]).kind : uint8_t{0};
    constexpr uint8_t special = kSeveral | kDigit | kOutside;
    return ((character.kind & special) | (character.refuses & next)) == 0 ? character.primary
                                                                          : kNotCovered;
}

std::optional<int> comparePrimaries(Walker left, Walker right, uint32_t numberLead) {
    for (;;) {
        uint32_t p = left.nextPrimary();
        uint32_t q = right.nextPrimary();
        if (p == kNotCovered || q == kNotCovered)
            return std::nullopt;
        if (p != q)
            return sign(p, q);
        if (p == kTextEnds)
            return 0;
        if (p == numberLead)
            if (int order = left.number().compare(right.number()))
                return order;
    }
}

int compareSecondaries(Walker left, Walker right) {
    for (;;) {
        uint32_t s = left.nextSecondary();
        uint32_t t = right.nextSecondary();
        if (s != t)
            return sign(s, t);
        if (s == kTextEnds)
            return 0;
    }
}

}  // namespace

std::optional<int> fastCompare(const CollationTable& table, TextView left, TextView right) {
    size_t prefix = commonPrefix(left, right);
    if (prefix == left.size() && prefix == right.size())
        return 0;
    std::optional<size_t> start = safeStart(table, left, right, prefix);
    if (!start)
        return std::nullopt;
    // Most pairs are decided by the characters that differ.
    if (*start < left.size() && *start < right.size()) {
        uint32_t p = plainPrimary(table, left, *start);
        uint32_t q = plainPrimary(table, right, *start);
        if (p != q && p != kNotCovered && q != kNotCovered)
            return sign(p, q);
    }
    const Walker a(table, left.data() + *start, left.data() + left.size());
    const Walker b(table, right.data() + *start, right.data() + right.size());
    std::optional<int> order = comparePrimaries(a, b, table.numberLead());
    return order != 0 ? order : compareSecondaries(a, b);
}

}  // namespace coreservices
