// SPDX-License-Identifier: MIT
#include <CoreServices/CoreServices.h>

#include "CoreServices/Collator.h"
#include "TextSource.h"

#include <thread>

#include <gtest/gtest.h>

namespace {

using namespace texts;

constexpr UCCollateOptions kFinder = 0x3800E;

constexpr UCCollateOptions without(UCCollateOptions mask) {
    return kFinder & ~mask;
}

const UniChar* units(const std::u16string& text) {
    return reinterpret_cast<const UniChar*>(text.data());
}

int compare(const std::u16string& left, const std::u16string& right,
            UCCollateOptions options = kFinder) {
    SInt32 order = 42;
    Boolean equivalent = 42;
    EXPECT_EQ(UCCompareTextDefault(options, units(left), left.size(), units(right), right.size(),
                                   &equivalent, &order),
              noErr);
    EXPECT_EQ(equivalent != 0, order == 0);
    return order < 0 ? -1 : order > 0;
}

TEST(CompareText, MasksHaveThePlatformsValues) {
    EXPECT_EQ(kUCCollateComposeInsensitiveMask | kUCCollateWidthInsensitiveMask |
                  kUCCollateCaseInsensitiveMask | kUCCollatePunctuationSignificantMask |
                  kUCCollateDigitsOverrideMask | kUCCollateDigitsAsNumberMask,
              0x3800E);
}

TEST(CompareText, OrdersNumbersInNamesByValue) {
    EXPECT_EQ(compare(u"file2", u"file10"), -1);
    EXPECT_EQ(compare(u"Item 9", u"Item 10"), -1);
    EXPECT_EQ(compare(u"a007", u"a7"), 0);
    EXPECT_EQ(compare(u"a0", u"a000"), 0);
    EXPECT_EQ(compare(u"12345678901234567890", u"12345678901234567891"), -1);
    EXPECT_EQ(compare(u"x9999999", u"x10000000"), -1);
    EXPECT_EQ(compare(u"x1.5", u"x1a"), -1);
}

TEST(CompareText, OrdersVeryLongNumbersAsIcuDoes) {
    std::u16string longNumber(300, u'7');
    EXPECT_EQ(compare(longNumber, longNumber + u"1"), -1);
    EXPECT_EQ(compare(u"000" + longNumber, longNumber), 0);
}

TEST(CompareText, CaseDoesNotCount) {
    EXPECT_EQ(compare(u"abc", u"ABC"), 0);
    EXPECT_EQ(compare(u"\u00C9t\u00E9", u"\u00E9T\u00C9"), 0);
}

TEST(CompareText, AccentsCountAfterTheLetters) {
    EXPECT_EQ(compare(u"cote", u"cot\u00E9"), -1);
    EXPECT_EQ(compare(u"cot\u00E9", u"cotf"), -1);
}

TEST(CompareText, ComposedAndDecomposedTextIsEqual) {
    EXPECT_EQ(compare(u"caf\u00E9", u"cafe\u0301"), 0);
    EXPECT_EQ(compare(u"\u1EBF", u"e\u0302\u0301"), 0);
    EXPECT_EQ(compare(u"q\u0323\u0307", u"q\u0307\u0323"), 0);
    EXPECT_EQ(compare(u"\uAC01", u"\u1100\u1161\u11A8"), 0);
}

TEST(CompareText, FullWidthLettersEqualPlainOnes) {
    EXPECT_EQ(compare(u"\uFF21\uFF11", u"a1"), 0);
}

TEST(CompareText, PunctuationCounts) {
    EXPECT_NE(compare(u"a-b", u"ab"), 0);
    EXPECT_EQ(compare(u"_a", u"a"), -1);
}

TEST(CompareText, WithoutTheCaseMaskCaseCounts) {
    EXPECT_NE(compare(u"abc", u"ABC", without(kUCCollateCaseInsensitiveMask)), 0);
    EXPECT_EQ(compare(u"\uFF41", u"a", without(kUCCollateCaseInsensitiveMask)), 0);
}

TEST(CompareText, WithoutTheWidthMaskWidthCountsAndCaseDoesNot) {
    constexpr UCCollateOptions options = without(kUCCollateWidthInsensitiveMask);
    EXPECT_NE(compare(u"\uFF21", u"A", options), 0);
    EXPECT_EQ(compare(u"Straße", u"STRAßE", options), 0);
}

TEST(CompareText, WithoutTheComposeMaskDecomposedTextComesAfterComposed) {
    constexpr UCCollateOptions options = without(kUCCollateComposeInsensitiveMask);
    EXPECT_EQ(compare(u"caf\u00E9", u"cafe\u0301", options), -1);
    EXPECT_EQ(compare(u"CAF\u00C9", u"caf\u00E9", options), 0);
}

TEST(CompareText, WithoutThePunctuationMaskPunctuationIsLookedThrough) {
    EXPECT_EQ(compare(u"a-b", u"ab", without(kUCCollatePunctuationSignificantMask)), 0);
}

TEST(CompareText, DigitsAreNumbersOnlyWithBothDigitMasks) {
    EXPECT_EQ(compare(u"file2", u"file10", without(kUCCollateDigitsAsNumberMask)), 1);
    EXPECT_EQ(compare(u"file2", u"file10", without(kUCCollateDigitsOverrideMask)), 1);
}

TEST(CompareText, EmptyTextsNeedNoPointer) {
    SInt32 order = 1;
    EXPECT_EQ(UCCompareTextDefault(kFinder, nullptr, 0, nullptr, 0, nullptr, &order), noErr);
    EXPECT_EQ(order, 0);
    EXPECT_EQ(compare(u"", u"a"), -1);
    EXPECT_EQ(compare(u"", u"\u0001"), 0);
}

TEST(CompareText, RefusesTextsThatAreNotThereAndOptionsItDoesNotKnow) {
    const UniChar text[] = {'a'};
    SInt32 order = 7;
    EXPECT_EQ(UCCompareTextDefault(kFinder, nullptr, 1, text, 1, nullptr, &order), paramErr);
    EXPECT_EQ(UCCompareTextDefault(kFinder, text, 1, nullptr, 1, nullptr, &order), paramErr);
    EXPECT_EQ(UCCompareTextDefault(kFinder, text, 1, text, 1, nullptr, nullptr), paramErr);
    EXPECT_EQ(UCCompareTextDefault(kFinder | 1, text, 1, text, 1, nullptr, &order),
              kCollateInvalidOptions);
    EXPECT_EQ(order, 7);
}

TEST(CompareText, TheCLocaleSortsInTheRootOrder) {
    EXPECT_EQ(coreservices::collationLocale("C.UTF-8"), "");
    EXPECT_EQ(coreservices::collationLocale("POSIX"), "");
    EXPECT_EQ(coreservices::collationLocale("de_DE.UTF-8@euro"), "de_DE");
    EXPECT_EQ(compare(u"b", u"C"), -1);
}

TEST(CompareText, EveryThreadHasItsOwnCollators) {
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t)
        threads.emplace_back([t] {
            TextSource source(static_cast<uint64_t>(t));
            for (int i = 0; i < 2000; ++i) {
                std::u16string text = source.anyText();
                ASSERT_EQ(compare(text, text), 0);
                std::u16string other = source.anyText();
                ASSERT_EQ(compare(text, other), -compare(other, text));
            }
        });
    for (std::thread& thread : threads)
        thread.join();
}

void checkPairs(bool latin, int pairs) {
    UCollator* icu = finderCollator("");
    TextSource source(latin ? 11 : 12);
    for (int i = 0; i < pairs; i += 2) {
        std::u16string text = latin ? source.latinText() : source.anyText();
        std::u16string near = source.variant(text, latin);
        std::u16string far = latin ? source.latinText() : source.anyText();
        ASSERT_EQ(compare(text, near), icuOrder(icu, text, near))
            << unitsOf(text) << "| " << unitsOf(near);
        ASSERT_EQ(compare(text, far), icuOrder(icu, text, far))
            << unitsOf(text) << "| " << unitsOf(far);
    }
    ucol_close(icu);
}

TEST(CompareText, AMillionPairsOfAnyTextCompareAsIcuComparesThem) {
    checkPairs(false, 1'000'000);
}

TEST(CompareText, AMillionPairsOfLatinTextCompareAsIcuComparesThem) {
    checkPairs(true, 1'000'000);
}

}  // namespace
