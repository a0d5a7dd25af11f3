// SPDX-License-Identifier: MIT
#include "CoreServices/CollationTable.h"

#include "CoreServices/FastSortKey.h"
#include "CoreServices/KeyLevels.h"

#include <algorithm>

#include <unicode/uchar.h>
#include <unicode/ucoleitr.h>
#include <unicode/unorm2.h>
#include <unicode/uset.h>

namespace coreservices {

namespace {

struct Range {
    char16_t first;
    char16_t last;
};

// Scripts whose texts are the sum of their characters but for the contractions ICU lists: Latin to
// Armenian, Latin and Greek additions, punctuation and symbols, kana, Han.
constexpr Range kCovered[] = {
    {0x0000, 0x058F}, {0x1E00, 0x206F}, {0x2070, 0x22FF}, {0x3000, 0x30FF}, {0x4E00, 0x9FFF}};

bool isCovered(char16_t unit) {
    return std::any_of(std::begin(kCovered), std::end(kCovered),
                       [unit](Range range) { return unit >= range.first && unit <= range.last; });
}

bool hasDecomposition(char16_t unit) {
    UErrorCode status = U_ZERO_ERROR;
    UChar decomposition[8];
    const UNormalizer2* composed = unorm2_getNFCInstance(&status);
    return unorm2_getRawDecomposition(composed, unit, decomposition, 8, &status) >= 0;
}

// An element as two 32-bit orders: the upper halves of its weights, then the lower ones.
constexpr uint32_t kContinuation = 0xC0;

Weight weightOf(uint32_t upper, uint32_t lower) {
    uint32_t primary = (upper & 0xFFFF0000u) | lower >> 16;
    return {primary, static_cast<uint16_t>((upper & 0xFF00u) | (lower >> 8 & 0xFFu))};
}

constexpr Character kOutsideCharacter{0, 0, kOutside, 0};

}  // namespace

CollationTable::CollationTable(const std::string& locale)
    : _collator(openCollator(locale, kFinderOptions)) {
    UErrorCode status = U_ZERO_ERROR;
    if (_collator == nullptr ||
        ucol_getAttribute(_collator.get(), UCOL_FRENCH_COLLATION, &status) == UCOL_ON)
        return;
    _numberLead = static_cast<uint32_t>(keyOf(u"0")[0]) << 24;
    _shared[_numberLead >> 24] = Sharing::No;
    readContractions();
    _latin = &page(0);
    _usable = samplesHold();
}

CollationTable::~CollationTable() {
    for (auto& page : _pages)
        delete page.load();
}

std::atomic<const CollationTable*> CollationTable::s_ofProcess = nullptr;

const CollationTable* CollationTable::ofProcess() {
    static const CollationTable& table = *new CollationTable(processLocale());
    if (!table.usable())
        return nullptr;
    s_ofProcess.store(&table, std::memory_order_release);
    return &table;
}

void CollationTable::readContractions() {
    UErrorCode status = U_ZERO_ERROR;
    USet* contractions = uset_openEmpty();
    ucol_getContractionsAndExpansions(_collator.get(), contractions, nullptr, true, &status);
    int32_t count = uset_getItemCount(contractions);
    for (int32_t i = 0; i < count; ++i) {
        UChar32 first, last;
        UChar text[64];
        int32_t length = uset_getItem(contractions, i, &first, &last, text, 64, &status);
        for (int32_t j = 0; j < std::min(length, 64); ++j) {
            _begins[text[j]] = _begins[text[j]] || j + 1 < length;
            _joins[text[j]] = _joins[text[j]] || j > 0;
        }
    }
    uset_close(contractions);
    // Not to know the contractions is to know no character.
    if (U_FAILURE(status)) {
        _begins.set();
        _joins.set();
    }
}

// What the tables cannot prove character by character: how numbers, long runs of common weights
// and neighbours of several scripts are written.
bool CollationTable::samplesHold() const {
    std::vector<std::u16string> samples = {u"",
                                           u"file 7",
                                           u"007",
                                           u"000",
                                           u"73",
                                           u"74",
                                           u"75a",
                                           u"327",
                                           u"10233",
                                           u"10234",
                                           u"1042489",
                                           u"1042490",
                                           u"9999999",
                                           u"10000000",
                                           u"12345678",
                                           u"1234567890001",
                                           u"10000000000000",
                                           u"_1a",
                                           u"\u00E9 e\u0301x",
                                           u"\u0430\u0431a\u0431\u5199\u0432\u5199",
                                           u"_\u0430_\u0431",
                                           u"\u03B1\u0430\u03B2\u0431",
                                           u"a\u0430.",
                                           std::u16string(254, u'9'),
                                           std::u16string(80, u'a') + u"\u00E9" +
                                               std::u16string(33, u'b')};
    std::vector<uint8_t> key;
    return std::all_of(samples.begin(), samples.end(), [&](const std::u16string& sample) {
        key.resize(fastSortKeyRoom(sample.size()));
        key.resize(fastSortKey(*this, sample, key.data()));
        // A locale may leave some sample to ICU; what is written must be right.
        return key.empty() || key == keyOf(sample);
    });
}

const CharacterPage& CollationTable::makePage(unsigned number) const {
    std::lock_guard lock(_making);
    auto& slot = _pages[number];
    if (slot.load(std::memory_order_relaxed) == nullptr)
        slot.store(buildPage(number).release(), std::memory_order_release);
    return *slot.load(std::memory_order_relaxed);
}

std::unique_ptr<CharacterPage> CollationTable::buildPage(unsigned number) const {
    auto page = std::make_unique<CharacterPage>();
    std::array<Weights, 256> weights;
    auto unitAt = [number](size_t i) { return static_cast<char16_t>(number << 8 | i); };
    for (size_t i = 0; i < weights.size(); ++i) {
        if (!isCovered(unitAt(i)))
            continue;
        weights[i] = weightsOf(unitAt(i));
        if (weights[i].size() == 1 && weights[i][0].primary != 0)
            learnLead(unitAt(i), weights[i][0]);
    }
    for (size_t i = 0; i < weights.size(); ++i)
        page->characters[i] = describe(*page, unitAt(i), std::move(weights[i]));
    return page;
}

Character CollationTable::describe(CharacterPage& page, char16_t unit, Weights weights) const {
    bool digit = unit >= u'0' && unit <= u'9';
    if (!isCovered(unit) || (!digit && u_charType(unit) == U_DECIMAL_DIGIT_NUMBER))
        return kOutsideCharacter;
    Character character{};
    bool mark = u_getIntPropertyValue(unit, UCHAR_LEAD_CANONICAL_COMBINING_CLASS) != 0;
    bool marked = u_getIntPropertyValue(unit, UCHAR_TRAIL_CANONICAL_COMBINING_CLASS) != 0;
    if (mark && hasDecomposition(unit))
        return kOutsideCharacter;
    // Two marks in a row may change places before they are weighed.
    character.kind = static_cast<uint8_t>((mark ? kMark : 0) | (_joins[unit] ? kJoins : 0));
    character.refuses = static_cast<uint8_t>(kOutside | (mark || marked ? kMark : 0) |
                                             (_begins[unit] ? kMark | kJoins : 0));
    if (digit) {
        if (_begins[unit])
            return kOutsideCharacter;
        character.kind |= kDigit;
        return character;
    }
    if (weights.size() > kMaxWeights || !translateLeads(weights) || !keyHolds(unit, weights))
        return kOutsideCharacter;
    if (weights.size() == 1 && weights[0].primary != 0 && weights[0].secondary != 0) {
        character.primary = weights[0].primary;
        character.secondary = weights[0].secondary;
        return character;
    }
    character.kind |= kSeveral;
    character.primary = static_cast<uint32_t>(page.weights.size());
    character.secondary = static_cast<uint16_t>(weights.size());
    page.weights.insert(page.weights.end(), weights.begin(), weights.end());
    return character;
}

// From the key of the character twice: its first byte, and whether it is written again.
void CollationTable::learnLead(char16_t unit, const Weight& weight) const {
    const char16_t twice[] = {unit, unit};
    std::vector<uint8_t> key = keyOf({twice, 2});
    auto bytes = static_cast<size_t>(4 - std::countr_zero(weight.primary) / 8);
    auto length = static_cast<size_t>(std::find(key.begin(), key.end(), 1) - key.begin());
    if (length != 2 * bytes && length != 2 * bytes - 1)
        return;
    _movedLead[weight.primary >> 24] = key[0];
    if (_shared[key[0]] == Sharing::Unknown)
        _shared[key[0]] = length == 2 * bytes ? Sharing::No : Sharing::Yes;
}

bool CollationTable::translateLeads(Weights& weights) const {
    for (Weight& weight : weights) {
        if (weight.primary == 0)
            continue;
        uint32_t lead = static_cast<uint32_t>(_movedLead[weight.primary >> 24]) << 24;
        if (lead == 0 || lead == _numberLead)
            return false;
        weight.primary = lead | (weight.primary & 0x00FFFFFF);
    }
    return true;
}

bool CollationTable::keyHolds(char16_t unit, const Weights& weights) const {
    uint8_t primaries[2 * kMaxWeights * (KeyLevels::kPrimaryRoom + KeyLevels::kSecondaryRoom) +
                      2 * KeyLevels::kSlack];
    uint8_t secondaries[2 * kMaxWeights * KeyLevels::kSecondaryRoom + KeyLevels::kSlack];
    const char16_t twice[] = {unit, unit};
    for (size_t times = 1; times <= 2; ++times) {
        KeyLevels levels(*this, primaries, secondaries);
        for (size_t i = 0; i < times; ++i)
            std::for_each(weights.begin(), weights.end(),
                          [&](auto& weight) { levels.add(weight); });
        size_t length = levels.finish();
        std::vector<uint8_t> expected = keyOf({twice, times});
        if (!std::equal(primaries, primaries + length, expected.begin(), expected.end()))
            return false;
    }
    return true;
}

CollationTable::Weights CollationTable::weightsOf(char16_t unit) const {
    UErrorCode status = U_ZERO_ERROR;
    Weights weights;
    UCollationElements* elements = ucol_openElements(_collator.get(), &unit, 1, &status);
    uint32_t upper = 0;
    for (int32_t order; (order = ucol_next(elements, &status)) != UCOL_NULLORDER;) {
        auto bits = static_cast<uint32_t>(order);
        if ((bits & kContinuation) == kContinuation && !weights.empty())
            weights.back() = weightOf(upper, bits);
        else
            weights.push_back(weightOf(bits, 0));
        upper = bits;
    }
    ucol_closeElements(elements);
    // Elements that differ only on levels that this order leaves out weigh nothing.
    std::erase_if(weights, [](const Weight& w) { return w.primary == 0 && w.secondary == 0; });
    return weights;
}

std::vector<uint8_t> CollationTable::keyOf(TextView text) const {
    std::vector<uint8_t> key(64);
    for (int attempt = 0; attempt < 2; ++attempt) {
        auto room = static_cast<int32_t>(key.size());
        int32_t length = ucol_getSortKey(_collator.get(), text.data(),
                                         static_cast<int32_t>(text.size()), key.data(), room);
        key.resize(static_cast<size_t>(length));
        if (length <= room)
            break;
    }
    return key;
}

}  // namespace coreservices
