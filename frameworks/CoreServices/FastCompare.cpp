// SPDX-License-Identifier: MIT
#include "CoreServices/FastCompare.h"

#include "CoreServices/DigitRun.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace coreservices {

namespace {

constexpr size_t kNowhere = static_cast<size_t>(-1);
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

// The first place at or after `at` where the units differ, or the shorter text's end.
size_t skipEqualUnits(TextView left, TextView right, size_t at) {
    size_t length = std::min(left.size(), right.size());
    for (; at + 4 <= length; at += 4) {
        uint64_t a, b;
        std::memcpy(&a, left.data() + at, sizeof a);
        std::memcpy(&b, right.data() + at, sizeof b);
        if (a != b)
            return at + static_cast<size_t>(std::countr_zero(a ^ b)) / 16;
    }
    while (at < length && left[at] == right[at])
        ++at;
    return at;
}

int sign(uint32_t left, uint32_t right) {
    return left < right ? -1 : 1;
}

// Two texts side by side.
class Pair {
public:
    Pair(const CollationTable& table, TextView left, TextView right)
        : _table(table), _left(left), _right(right) {}

    // The first place where the texts no longer weigh the same unit by unit. All before it does,
    // within either text and up to what stands there.
    size_t skipEqualWeights() const {
        size_t proven = 0;  // nothing before this place changes what stands there
        for (size_t at = skipEqualUnits(_left, _right, 0);;) {
            if (at >= _left.size() || at >= _right.size() || !weighTheSame(at) ||
                (at != proven && !isBoundary(at)))
                return at;
            proven = at + 1;
            at = skipEqualUnits(_left, _right, proven);
        }
    }

    // The last place up to `start`, all before which weighs the same, from where both texts weigh
    // what they weigh as parts of the whole; kNowhere when the characters there are not covered.
    size_t safeStart(size_t start) const {
        if (isDigitAt(_left, start) || isDigitAt(_right, start))
            while (start > 0 && DigitRun::isDigit(_left[start - 1]))
                --start;
        return isBoundary(start) ? start : kNowhere;
    }

    // The order the characters there give when they differ and nothing can change them.
    int decideAt(size_t at) const {
        if (at >= _left.size() || at >= _right.size())
            return kUndecided;
        if (isDigitAt(_left, at) && isDigitAt(_right, at))
            return decideNumbersAt(at);
        if (!isPlain(_left, at) || !isPlain(_right, at))
            return kUndecided;
        uint32_t p = characterOf(_left[at]).primary;
        uint32_t q = characterOf(_right[at]).primary;
        return p != q ? sign(p, q) : kUndecided;
    }

private:
    const Character& characterOf(char16_t unit) const { return _table.character(unit); }

    uint8_t kindAt(TextView text, size_t at) const {
        return at < text.size() ? characterOf(text[at]).kind : uint8_t{0};
    }

    // Whether a character has just one weight and keeps it whatever follows.
    bool isPlain(TextView text, size_t at) const {
        const Character& character = characterOf(text[at]);
        constexpr uint8_t special = kSeveral | kDigit | kOutside;
        return ((character.kind & special) | (character.refuses & kindAt(text, at + 1))) == 0;
    }

    bool weighTheSame(size_t at) const {
        const Character& a = characterOf(_left[at]);
        const Character& b = characterOf(_right[at]);
        return a.primary == b.primary && a.secondary == b.secondary && isPlain(_left, at) &&
               isPlain(_right, at);
    }

    bool isBoundary(size_t at) const {
        return at == 0 || (endsBefore(_left, at) && endsBefore(_right, at));
    }

    bool endsBefore(TextView text, size_t at) const {
        const Character& before = characterOf(text[at - 1]);
        return ((before.kind & kOutside) | (before.refuses & kindAt(text, at))) == 0;
    }

    int decideNumbersAt(size_t at) const {
        DigitRun left(_left.data() + at, _left.data() + _left.size());
        DigitRun right(_right.data() + at, _right.data() + _right.size());
        int order = left.compare(right);
        if (order == 0 || !isWhole(_left, left) || !isWhole(_right, right))
            return kUndecided;
        return order < 0 ? -1 : 1;
    }

    // Whether the number ends where its ASCII digits do.
    bool isWhole(TextView text, const DigitRun& run) const {
        auto next = static_cast<size_t>(run.end() - text.data());
        return !run.isTooLong() && (characterOf(run.end()[-1]).refuses & kindAt(text, next)) == 0;
    }

    static bool isDigitAt(TextView text, size_t at) {
        return at < text.size() && DigitRun::isDigit(text[at]);
    }

    const CollationTable& _table;
    TextView _left;
    TextView _right;
};

int comparePrimaries(Walker left, Walker right, uint32_t numberLead) {
    for (;;) {
        uint32_t p = left.nextPrimary();
        uint32_t q = right.nextPrimary();
        if (p == kNotCovered || q == kNotCovered)
            return kUndecided;
        if (p != q)
            return sign(p, q);
        if (p == kTextEnds)
            return 0;
        if (p == numberLead)
            if (int order = left.number().compare(right.number()))
                return order < 0 ? -1 : 1;
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

int fastCompare(const CollationTable& table, TextView left, TextView right) {
    const Pair pair(table, left, right);
    size_t same = pair.skipEqualWeights();
    if (same == left.size() && same == right.size())
        return 0;
    size_t start = pair.safeStart(same);
    if (start == kNowhere)
        return kUndecided;
    // Most pairs are decided by the first characters that differ.
    int order = pair.decideAt(start);
    if (order != kUndecided)
        return order;
    const Walker a(table, left.data() + start, left.data() + left.size());
    const Walker b(table, right.data() + start, right.data() + right.size());
    order = comparePrimaries(a, b, table.numberLead());
    return order != 0 ? order : compareSecondaries(a, b);
}

}  // namespace coreservices
