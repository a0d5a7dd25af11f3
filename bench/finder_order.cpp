// SPDX-License-Identifier: MIT
// Finder order against its peers: ICU's comparison and sort keys, Qt's QCollator, plain bytes.
// Every sort starts from UTF-16 names and ends with their order.
#include <CoreServices/CoreServices.h>
#include <CoreServices/TextSortKeys.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include <QCollator>
#include <QLocale>
#include <benchmark/benchmark.h>
#include <unicode/ucol.h>

namespace {

constexpr UCCollateOptions kFinder = 0x3800E;
constexpr int kNames = 100'000;

using Names = std::vector<std::u16string>;

std::u16string number(uint32_t value) {
    std::string digits = std::to_string(value);
    return {digits.begin(), digits.end()};
}

// Names as cameras and people give them; with `latinOnly` none is written in another script.
Names makeNames(bool latinOnly) {
    const std::u16string beginnings[] = {
        u"IMG_",        u"img ", u"Photo ", u"photo-",   u"Ferien \u00C4pfel ", u"Caf\u00E9 ",
        u"Cafe\u0301 ", u"DSC",  u"scan.",  u"Report (", u"\u5199\u771F"};
    std::mt19937 random(9);
    auto below = [&random](uint32_t limit) { return static_cast<uint32_t>(random() % limit); };
    Names names;
    for (int i = 0; i < kNames; ++i) {
        std::u16string name = beginnings[below(latinOnly ? 10 : 11)] + number(below(200'000));
        if (below(3) == 0)
            name += u" copy " + number(below(20));
        names.push_back(name + (below(2) != 0 ? u".jpg" : u".NEF"));
    }
    return names;
}

UCollator* makeCollator() {
    UErrorCode status = U_ZERO_ERROR;
    UCollator* collator = ucol_open("", &status);
    ucol_setAttribute(collator, UCOL_NUMERIC_COLLATION, UCOL_ON, &status);
    ucol_setStrength(collator, UCOL_SECONDARY);
    ucol_setAttribute(collator, UCOL_NORMALIZATION_MODE, UCOL_ON, &status);
    return collator;
}

const UniChar* units(const std::u16string& text) {
    return reinterpret_cast<const UniChar*>(text.data());
}

int compareOurs(const std::u16string& a, const std::u16string& b) {
    SInt32 order = 0;
    UCCompareTextDefault(kFinder, units(a), a.size(), units(b), b.size(), nullptr, &order);
    return order;
}

int compareIcu(const UCollator* collator, const std::u16string& a, const std::u16string& b) {
    return ucol_strcoll(collator, a.data(), static_cast<int32_t>(a.size()), b.data(),
                        static_cast<int32_t>(b.size()));
}

// Walks over pairs of names: drawn at random at 0, neighbours of a sorted list at 1. Those share
// long beginnings.
template <typename Compare>
void comparePairs(benchmark::State& state, Compare compare) {
    Names names = makeNames(true);
    names.resize(4096);
    if (state.range(0) != 0)
        std::sort(names.begin(), names.end(),
                  [](auto& a, auto& b) { return compareOurs(a, b) < 0; });
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(compare(names[i], names[i + 1]));
        i = (i + 2) % 4096;
    }
}

void compareOursLatin(benchmark::State& state) {
    comparePairs(state, compareOurs);
}

void compareIcuLatin(benchmark::State& state) {
    UCollator* collator = makeCollator();
    comparePairs(state, [collator](auto& a, auto& b) { return compareIcu(collator, a, b); });
    ucol_close(collator);
}

void compareQCollatorLatin(benchmark::State& state) {
    QCollator collator(QLocale("en_US"));
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    comparePairs(state, [&](auto& a, auto& b) {
        return collator.compare(
            reinterpret_cast<const QChar*>(a.data()), static_cast<int>(a.size()),
            reinterpret_cast<const QChar*>(b.data()), static_cast<int>(b.size()));
    });
}

std::vector<uint32_t> sortOurs(const Names& names) {
    std::vector<TextSortItem> items;
    items.reserve(names.size());
    for (const std::u16string& name : names)
        items.push_back({units(name), name.size()});
    std::vector<uint32_t> order(names.size());
    TextSortKeysOrder(kFinder, items.data(), items.size(), order.data());
    return order;
}

std::vector<uint32_t> sortIcuKeys(const Names& names) {
    UCollator* collator = makeCollator();
    std::vector<std::pair<std::string, uint32_t>> keys;
    keys.reserve(names.size());
    uint8_t key[512];
    for (uint32_t i = 0; i < names.size(); ++i) {
        int32_t length = ucol_getSortKey(collator, names[i].data(),
                                         static_cast<int32_t>(names[i].size()), key, sizeof key);
        keys.emplace_back(std::string(key, key + length), i);
    }
    std::sort(keys.begin(), keys.end());
    std::vector<uint32_t> order;
    order.reserve(keys.size());
    for (auto& [bytes, item] : keys)
        order.push_back(item);
    ucol_close(collator);
    return order;
}

template <typename Less>
std::vector<uint32_t> sortBy(const Names& names, Less less) {
    std::vector<uint32_t> order(names.size());
    std::iota(order.begin(), order.end(), 0u);
    std::stable_sort(order.begin(), order.end(),
                     [&](uint32_t a, uint32_t b) { return less(names[a], names[b]); });
    return order;
}

std::vector<uint32_t> sortIcuCompare(const Names& names) {
    UCollator* collator = makeCollator();
    auto order = sortBy(names, [=](auto& a, auto& b) { return compareIcu(collator, a, b) < 0; });
    ucol_close(collator);
    return order;
}

std::vector<uint32_t> sortOursCompare(const Names& names) {
    return sortBy(names, [](auto& a, auto& b) { return compareOurs(a, b) < 0; });
}

std::vector<uint32_t> sortUnits(const Names& names) {
    return sortBy(names, [](auto& a, auto& b) { return a < b; });
}

std::vector<uint32_t> sortQCollatorKeys(const Names& names) {
    QCollator collator(QLocale("en_US"));
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::vector<std::pair<QCollatorSortKey, uint32_t>> keys;
    keys.reserve(names.size());
    for (uint32_t i = 0; i < names.size(); ++i)
        keys.emplace_back(collator.sortKey(QString::fromStdU16String(names[i])), i);
    std::sort(keys.begin(), keys.end(), [](auto& a, auto& b) { return a.first < b.first; });
    std::vector<uint32_t> order;
    for (auto& [key, item] : keys)
        order.push_back(item);
    return order;
}

const Names& mixedNames() {
    static const Names names = makeNames(false);
    return names;
}

// Whether each sort gives ICU's order: asked once, as the comparison takes a second.
bool isInIcusOrder() {
    static const bool is = sortOurs(mixedNames()) == sortIcuCompare(mixedNames()) &&
                           sortOursCompare(mixedNames()) == sortIcuCompare(mixedNames());
    return is;
}

void addCompare(const std::string& name, void (*run)(benchmark::State&)) {
    benchmark::RegisterBenchmark(("compareNames/" + name).c_str(), run)->Arg(0)->Arg(1);
}

void addSort(const std::string& name, std::vector<uint32_t> (*sort)(const Names&)) {
    auto run = [sort](benchmark::State& state) {
        if (!isInIcusOrder())
            state.SkipWithError("not ICU's order");
        for (auto _ : state)
            benchmark::DoNotOptimize(sort(mixedNames()));
    };
    benchmark::RegisterBenchmark(("sortNames/" + name).c_str(), run)
        ->Arg(kNames)
        ->Unit(benchmark::kMillisecond);
}

const bool kRegistered = [] {
    addCompare("ula", compareOursLatin);
    addCompare("ICU", compareIcuLatin);
    addCompare("QCollator", compareQCollatorLatin);
    addSort("ula", sortOurs);
    addSort("ICU keys", sortIcuKeys);
    addSort("QCollator keys", sortQCollatorKeys);
    addSort("bytes", sortUnits);
    addSort("ICU compare", sortIcuCompare);
    addSort("ula compare", sortOursCompare);
    return true;
}();

}  // namespace
