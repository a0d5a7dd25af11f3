// SPDX-License-Identifier: MIT
#include <CoreServices/TextSortKeys.h>

#include "TextSource.h"

#include <algorithm>
#include <numeric>

#include <gtest/gtest.h>
#include <unicode/uchar.h>
#include <unicode/utf16.h>

namespace {

using namespace texts;

constexpr UCCollateOptions kFinder = 0x3800E;

const UniChar* units(const std::u16string& text) {
    return reinterpret_cast<const UniChar*>(text.data());
}

std::string keyOf(const std::u16string& text, UCCollateOptions options = kFinder) {
    ByteCount length = 0;
    EXPECT_EQ(TextSortKeyMake(options, units(text), text.size(), nullptr, 0, &length),
              kCollateBufferTooSmall);
    std::vector<UInt8> key(length);
    EXPECT_EQ(TextSortKeyMake(options, units(text), text.size(), key.data(), length, &length),
              noErr);
    return {key.begin(), key.end()};
}

int compare(const std::u16string& left, const std::u16string& right, UCCollateOptions options) {
    SInt32 order = 0;
    UCCompareTextDefault(options, units(left), left.size(), units(right), right.size(), nullptr,
                         &order);
    return order < 0 ? -1 : order > 0;
}

std::vector<UInt32> orderOf(const std::vector<std::u16string>& texts) {
    std::vector<TextSortItem> items;
    for (const std::u16string& text : texts)
        items.push_back({units(text), text.size()});
    std::vector<UInt32> order(texts.size());
    EXPECT_EQ(TextSortKeysOrder(kFinder, items.data(), items.size(), order.data()), noErr);
    return order;
}

std::vector<UInt32> orderByIcu(const std::vector<std::u16string>& texts) {
    UCollator* icu = finderCollator("");
    std::vector<UInt32> order(texts.size());
    std::iota(order.begin(), order.end(), 0u);
    std::stable_sort(order.begin(), order.end(),
                     [&](UInt32 a, UInt32 b) { return icuOrder(icu, texts[a], texts[b]) < 0; });
    ucol_close(icu);
    return order;
}

TEST(SortKeys, AreTheKeysIcuMakes) {
    UCollator* icu = finderCollator("");
    TextSource source(21);
    for (int i = 0; i < 400'000 / ULA_ROUNDS_DIVISOR; ++i) {
        std::u16string text = i % 2 != 0 ? source.latinText() : source.anyText();
        ASSERT_EQ(keyOf(text), icuKey(icu, text)) << unitsOf(text);
    }
    ucol_close(icu);
}

// ICU's comparison starts at the first difference and does not see that it stands in a number when
// the digits are beyond the first 65,536 code points; its keys do. Neither is bent here.
bool icuAgreesWithItself(const std::u16string& text) {
    for (size_t i = 0; i < text.size();) {
        UChar32 codePoint;
        U16_NEXT(text.data(), i, text.size(), codePoint);
        if (codePoint >= 0x10000 && u_isdigit(codePoint))
            return false;
    }
    return true;
}

TEST(SortKeys, CompareAsTheTextsDoForEverySetOfOptions) {
    TextSource source(22);
    for (UCCollateOptions bits = 0; bits < 64; ++bits) {
        UCCollateOptions options = (bits & 7) << 1 | (bits >> 3) << 15;
        for (int i = 0; i < 500 / ULA_ROUNDS_DIVISOR; ++i) {
            std::u16string text = i % 2 != 0 ? source.latinText() : source.anyText();
            std::u16string other = source.variant(text, i % 2 != 0);
            if (!icuAgreesWithItself(text) || !icuAgreesWithItself(other))
                continue;
            int byKey = keyOf(text, options).compare(keyOf(other, options));
            ASSERT_EQ(byKey < 0 ? -1 : byKey > 0, compare(text, other, options))
                << std::hex << options << ": " << unitsOf(text) << "| " << unitsOf(other);
        }
    }
}

TEST(SortKeys, OrderAListAsIcuOrdersIt) {
    TextSource source(23);
    std::vector<std::u16string> texts;
    while (texts.size() < 30'000) {
        std::u16string text = texts.size() % 3 == 0 ? source.anyText() : source.latinText();
        if (icuAgreesWithItself(text))
            texts.push_back(text);
    }
    EXPECT_EQ(orderOf(texts), orderByIcu(texts));
}

TEST(SortKeys, ItemsThatAreEqualKeepTheirOrder) {
    EXPECT_EQ(orderOf({u"b", u"A", u"a", u"a\u0001", u"a"}), (std::vector<UInt32>{1, 2, 3, 4, 0}));
}

TEST(SortKeys, LongCommonBeginningsDoNotExhaustTheStack) {
    std::u16string name(400'000, u'x');
    EXPECT_EQ(orderOf({name + u"b", name, name + u"a", name}), (std::vector<UInt32>{1, 3, 2, 0}));
}

TEST(SortKeys, EmptyAndOneItemListsAreInOrder) {
    EXPECT_EQ(TextSortKeysOrder(kFinder, nullptr, 0, nullptr), noErr);
    EXPECT_EQ(orderOf({u""}), std::vector<UInt32>{0});
}

TEST(SortKeys, RefuseWhatTheComparisonRefuses) {
    TextSortItem missing{nullptr, 1};
    UInt32 order = 0;
    ByteCount length = 0;
    EXPECT_EQ(TextSortKeysOrder(kFinder, &missing, 1, &order), paramErr);
    EXPECT_EQ(TextSortKeysOrder(kFinder | 1, nullptr, 0, nullptr), kCollateInvalidOptions);
    EXPECT_EQ(TextSortKeyMake(kFinder, nullptr, 1, nullptr, 0, &length), paramErr);
}

}  // namespace
