// SPDX-License-Identifier: MIT
#include "CoreServices/CollationTable.h"
#include "CoreServices/FastCompare.h"
#include "CoreServices/FastSortKey.h"
#include "TextSource.h"

#include <thread>

#include <gtest/gtest.h>

namespace {

using namespace coreservices;
using namespace texts;

constexpr int kPairs = 20'000 / ULA_ROUNDS_DIVISOR;

std::string fastKey(const CollationTable& table, const std::u16string& text) {
    std::vector<uint8_t> key(fastSortKeyRoom(text.size()));
    size_t length = fastSortKey(table, text, key.data());
    return {key.begin(), key.begin() + static_cast<ptrdiff_t>(length)};
}

struct Closer {
    void operator()(UCollator* collator) const { ucol_close(collator); }
};

class CollationTableLocales : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        _icu.reset(finderCollator(GetParam()));
        ASSERT_NE(_icu, nullptr);
        ASSERT_TRUE(_table.usable());
    }

    // Counts the texts that did not need ICU.
    int checkPair(const std::u16string& left, const std::u16string& right) {
        int order = fastCompare(_table, left, right);
        if (order != kUndecided)
            EXPECT_EQ(order, icuOrder(_icu.get(), left, right))
                << unitsOf(left) << "| " << unitsOf(right);
        std::string key = fastKey(_table, left);
        if (!key.empty())
            EXPECT_EQ(key, icuKey(_icu.get(), left)) << unitsOf(left);
        return !key.empty();
    }

    CollationTable _table{GetParam()};
    std::unique_ptr<UCollator, Closer> _icu;
};

TEST_P(CollationTableLocales, AnswersAsIcuWheneverItAnswersOnLatinText) {
    TextSource source(1);
    int covered = 0;
    for (int i = 0; i < kPairs && !HasFailure(); ++i) {
        std::u16string text = source.latinText();
        covered += checkPair(text, source.variant(text, true));
        checkPair(text, source.latinText());
    }
    EXPECT_GT(covered, kPairs / 4);
}

TEST_P(CollationTableLocales, AnswersAsIcuWheneverItAnswersOnAnyText) {
    TextSource source(2);
    for (int i = 0; i < kPairs && !HasFailure(); ++i) {
        std::u16string text = source.anyText();
        checkPair(text, source.variant(text, false));
        checkPair(text, source.anyText());
    }
}

INSTANTIATE_TEST_SUITE_P(, CollationTableLocales,
                         testing::Values("", "en_US", "de", "de@collation=phonebook", "da", "cs",
                                         "es@collation=traditional", "hu", "sk", "lt", "tr", "vi",
                                         "el", "ru", "uk", "ja", "zh", "ko", "ar", "th", "hi",
                                         "en_US_POSIX"));

TEST(CollationTable, LeavesALocaleWithABackwardSecondLevelToIcu) {
    EXPECT_FALSE(CollationTable("fr_CA").usable());
}

TEST(CollationTable, CoversPlainNamesWithoutIcu) {
    CollationTable table("");
    for (const char16_t* name :
         {u"IMG_1234 copy.jpg", u"Caf\u00E9.txt", u"Cafe\u0301.txt", u"\u00C4pfel (2)",
          u"007 \u2013 license.pdf", u"\u5199\u771F 12", u"\u041C\u043E\u0441\u043A\u0432\u0430"})
        EXPECT_NE(fastKey(table, name), "") << unitsOf(name);
}

TEST(CollationTable, PagesMadeByManyThreadsAtOnceAreTheSame) {
    CollationTable table("");
    std::unique_ptr<UCollator, Closer> icu(finderCollator(""));
    std::vector<std::thread> threads;
    std::atomic<int> wrong = 0;
    for (int t = 0; t < 8; ++t)
        threads.emplace_back([&] {
            for (char16_t unit = 0x4E00; unit < 0x9F00; unit = static_cast<char16_t>(unit + 37)) {
                std::u16string text{unit, u'a', static_cast<char16_t>(0x3F0 + unit % 0x200)};
                std::string key = fastKey(table, text);
                wrong += !key.empty() && key != icuKey(icu.get(), text);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}

}  // namespace
