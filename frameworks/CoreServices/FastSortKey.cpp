// SPDX-License-Identifier: MIT
#include "CoreServices/FastSortKey.h"

#include "CoreServices/DigitRun.h"

namespace coreservices {

namespace {

constexpr size_t kPrimaryBytes = KeyLevels::kPrimaryRoom * CollationTable::kMaxWeights;
constexpr size_t kSecondaryBytes = KeyLevels::kSecondaryRoom * CollationTable::kMaxWeights;
constexpr Character kEnd{};

void addSeveral(KeyLevels& levels, const CharacterPage& page, const Character& character) {
    const Weight* weight = page.weights.data() + character.primary;
    for (const Weight* end = weight + character.secondary; weight != end; ++weight)
        levels.add(*weight);
}

}  // namespace

size_t fastSortKeyRoom(size_t textLength) {
    return textLength * (kPrimaryBytes + kSecondaryBytes) + 2 * KeyLevels::kSlack;
}

size_t fastSortKey(const CollationTable& table, TextView text, uint8_t* key) {
    KeyLevels levels(table, key, key + text.size() * kPrimaryBytes + KeyLevels::kSlack);
    const char16_t* at = text.data();
    const char16_t* end = at + text.size();
    while (at != end) {
        const CharacterPage& page = table.page(*at);
        const Character& character = page.characters[*at & 0xFF];
        const char16_t* next = at + 1;
        if ((character.kind & kDigit) != 0) {
            DigitRun run(at, end);
            next = run.end();
            if (run.isTooLong())
                return 0;
            run.addTo(levels, table.numberLead());
        } else if ((character.kind & kSeveral) != 0) {
            addSeveral(levels, page, character);
        } else if ((character.kind & kOutside) != 0) {
            return 0;
        } else {
            levels.addPrimary(character.primary);
            levels.addSecondary(character.secondary);
        }
        const Character& following = next != end ? table.character(*next) : kEnd;
        if ((character.refuses & following.kind) != 0)
            return 0;
        at = next;
    }
    return levels.finish();
}

}  // namespace coreservices
