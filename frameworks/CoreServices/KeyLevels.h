// SPDX-License-Identifier: MIT
#pragma once

#include "CoreServices/CollationTable.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace coreservices {

// The secondary weight of a character that has nothing to say on the second level.
inline constexpr uint16_t kCommonSecondary = 0x0500;

// Writes the two levels of a sort key byte for byte as ICU does, so that keys written here and keys
// ICU wrote for other texts stand in one order. Neighbouring primary weights of a script whose
// first byte is marked as shared write it once; runs of common secondary weights are written as
// their length.
class KeyLevels {
public:
    static constexpr size_t kPrimaryRoom = 5;    // bytes a weight takes at most, first level
    static constexpr size_t kSecondaryRoom = 3;  // and second level
    static constexpr size_t kSlack = 8;          // for each level: its end, and a store past it

    // The two areas must have room for every weight that will be added.
    KeyLevels(const CollationTable& table, uint8_t* primaries, uint8_t* secondaries)
        : _table(table),
          _start(primaries),
          _at(primaries),
          _secondStart(secondaries),
          _second(secondaries) {}

    void add(const Weight& weight) {
        if (weight.primary != 0)
            addPrimary(weight.primary);
        if (weight.secondary != 0)
            addSecondary(weight.secondary);
    }

    void addPrimary(uint32_t primary) {
        if (_sharing != 0 || _table.isShared(leadOf(primary)))
            addSharing(primary);
        else
            store(primary);
    }

    void addSecondary(uint16_t secondary) {
        if (secondary == kCommonSecondary) {
            ++_commons;
            return;
        }
        writeCommons(secondary > kCommonSecondary);
        *_second++ = static_cast<uint8_t>(secondary >> 8);
        if ((secondary & 0xFF) != 0)
            *_second++ = static_cast<uint8_t>(secondary);
    }

    // Brings the levels together behind the primaries and returns the key's length.
    size_t finish() {
        writeCommons(false);
        *_at++ = kLevelEnd;
        auto length = static_cast<size_t>(_second - _secondStart);
        std::memmove(_at, _secondStart, length);
        _at += length;
        *_at++ = 0;
        return static_cast<size_t>(_at - _start);
    }

private:
    static constexpr uint8_t kLevelEnd = 1;
    static constexpr uint8_t kSharingEndsLower = 3;
    static constexpr uint8_t kSharingEndsHigher = 0xFF;
    static constexpr uint32_t kCommonsPerByte = 0x21;
    static constexpr uint8_t kCommonsLow = 0x05;
    static constexpr uint8_t kCommonsMiddle = 0x25;
    static constexpr uint8_t kCommonsHigh = 0x45;

    static uint8_t leadOf(uint32_t primary) { return static_cast<uint8_t>(primary >> 24); }

    // Stores all four bytes and steps over those that count: no branch on their number.
    void store(uint32_t primary) {
        uint32_t bytes = __builtin_bswap32(primary);
        std::memcpy(_at, &bytes, sizeof bytes);
        _at += 4 - std::countr_zero(primary) / 8;
    }

    void addSharing(uint32_t primary) {
        if (_sharing != 0 && leadOf(primary) == leadOf(_sharing)) {
            store(primary << 8);
        } else {
            if (_sharing != 0)
                *_at++ = primary < _sharing ? kSharingEndsLower : kSharingEndsHigher;
            store(primary);
        }
        _sharing = _table.isShared(leadOf(primary)) ? primary : 0;
    }

    void writeCommons(bool higherFollows) {
        if (_commons == 0)
            return;
        uint32_t rest = _commons - 1;
        for (; rest >= kCommonsPerByte; rest -= kCommonsPerByte)
            *_second++ = kCommonsMiddle;
        *_second++ = static_cast<uint8_t>(higherFollows ? kCommonsHigh - rest : kCommonsLow + rest);
        _commons = 0;
    }

    const CollationTable& _table;
    uint8_t* _start;
    uint8_t* _at;
    uint8_t* _secondStart;
    uint8_t* _second;
    uint32_t _sharing = 0;  // the primary whose first byte the next one may leave out
    uint32_t _commons = 0;
};

}  // namespace coreservices
