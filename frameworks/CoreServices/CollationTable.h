// SPDX-License-Identifier: MIT
#pragma once

#include "CoreServices/Collator.h"
#include "CoreServices/PreparedText.h"

#include <array>
#include <atomic>
#include <bitset>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace coreservices {

// One collation element: what a character weighs on the two levels that count.
struct Weight {
    uint32_t primary;    // bytes from the most significant down, unused ones zero; 0: none
    uint16_t secondary;  // 0: none
};

// What a character is to the code that walks a text.
enum CharacterKind : uint8_t {
    kOutside = 1,  // only ICU knows how it sorts
    kMark = 2,     // a combining mark
    kJoins = 4,    // may stand in a contraction, not as its first
    kSeveral = 8,  // weighs more than one element, or none
    kDigit = 16,   // an ASCII digit
};

struct Character {
    uint32_t primary;    // with kSeveral: where in the page's weights they begin
    uint16_t secondary;  // with kSeveral: how many there are
    uint8_t kind;        // bits of CharacterKind
    uint8_t refuses;     // kinds of a next character after which this one's weights are not certain
};

struct CharacterPage {
    std::array<Character, 256> characters;
    std::vector<Weight> weights;
};

// What single characters weigh in the Finder's order, asked of an ICU collator and proved against
// the sort keys it makes. A text all of whose characters are inside, none refusing the next one,
// weighs the sum of its characters; with any other text ICU has the word.
//
// Pages of 256 characters are made when first looked at and live as long as the table.
// Thread: any.
class CollationTable {
public:
    // A character that weighs more elements than this is outside.
    static constexpr size_t kMaxWeights = 4;

    explicit CollationTable(const std::string& locale);
    CollationTable(const CollationTable&) = delete;
    CollationTable& operator=(const CollationTable&) = delete;
    ~CollationTable();

    // The table of the process's locale, null when it is not usable. Made at the first call, never
    // destroyed: threads may sort while the process ends.
    static const CollationTable* ofProcess();
    // The same, and null also while it is not made.
    static const CollationTable* ofProcessIfMade() {
        return s_ofProcess.load(std::memory_order_acquire);
    }

    // False when this ICU's keys are not made as fastSortKey makes them, or its rules (backward
    // second level) are not of the simple kind: then nothing but ICU is to be used.
    bool usable() const { return _usable; }

    const CharacterPage& page(char16_t unit) const {
        const CharacterPage* page = _pages[unit >> 8].load(std::memory_order_acquire);
        return page != nullptr ? *page : makePage(unit >> 8);
    }
    const Character& character(char16_t unit) const {
        return unit <= 0xFF ? _latin->characters[unit] : page(unit).characters[unit & 0xFF];
    }

    // Null when its page is not made yet.
    const Character* readyCharacter(char16_t unit) const {
        if (unit <= 0xFF)
            return &_latin->characters[unit];
        const CharacterPage* page = _pages[unit >> 8].load(std::memory_order_acquire);
        return page != nullptr ? &page->characters[unit & 0xFF] : nullptr;
    }

    // The first byte of every number's weight, shared with nothing else.
    uint32_t numberLead() const { return _numberLead; }
    // Whether neighbours with this first byte share it in a key. Known for what pages hold.
    bool isShared(uint8_t lead) const { return _shared[lead] == Sharing::Yes; }

private:
    enum class Sharing : uint8_t { Unknown, No, Yes };
    using Weights = std::vector<Weight>;

    const CharacterPage& makePage(unsigned number) const;
    std::unique_ptr<CharacterPage> buildPage(unsigned number) const;
    Character describe(CharacterPage& page, char16_t unit, Weights weights) const;
    void readContractions();
    bool samplesHold() const;
    void learnLead(char16_t unit, const Weight& weight) const;
    bool translateLeads(Weights& weights) const;
    bool keyHolds(char16_t unit, const Weights& weights) const;
    Weights weightsOf(char16_t unit) const;
    std::vector<uint8_t> keyOf(TextView text) const;

    static std::atomic<const CollationTable*> s_ofProcess;

    const CharacterPage* _latin = nullptr;  // the first page, always there in a usable table
    OwnedCollator _collator;                // used under _making once the constructor is through
    bool _usable = false;
    uint32_t _numberLead = 0;
    std::bitset<65536> _begins;  // characters that stand in a contraction, not as its last
    std::bitset<65536> _joins;   // not as its first
    mutable std::mutex _making;
    // Locales that put another script first move whole first bytes: from the element's to the
    // key's.
    mutable std::array<uint8_t, 256> _movedLead{};
    // By the key's first byte. An element is written once, before the first page that needs it is
    // published.
    mutable std::array<Sharing, 256> _shared{};
    mutable std::array<std::atomic<const CharacterPage*>, 256> _pages{};
};

}  // namespace coreservices
