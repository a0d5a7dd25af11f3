// SPDX-License-Identifier: MIT
#include "ula/ObjCFunctionsWrapper.h"
#import "ula/ObjCHelper.h"
#include "ula/ScopedARPool.h"

#include <algorithm>
#include <gmock/gmock.h>

namespace tav::ula {
namespace {

using ObjCFunctionsWrapper::compareLikeFinderWrapper;

class FinderOrder : public testing::Test {
protected:
    /// The message itself, of two texts.
    static NSComparisonResult order(const std::string& left, const std::string& right) {
        return [[NSString fromStdString:left] compareLikeFinder:[NSString fromStdString:right]];
    }

private:
    const ScopedARPool _pool;
};

TEST_F(FinderOrder, WrapperIsPositiveWhenTheFirstComesFirst) {
    EXPECT_EQ(compareLikeFinderWrapper("a", "b"), 1);
    EXPECT_EQ(compareLikeFinderWrapper("b", "a"), -1);
    EXPECT_EQ(compareLikeFinderWrapper("same", "same"), 0);
}

TEST_F(FinderOrder, WrapperTakesStringObjectsToo) {
    void* const first = [NSString fromStdString:"a"];
    void* const second = [NSString fromStdString:"b"];
    EXPECT_EQ(compareLikeFinderWrapper(first, second), 1);
    EXPECT_EQ(compareLikeFinderWrapper(second, first), -1);
    EXPECT_EQ(compareLikeFinderWrapper(first, first), 0);
}

TEST_F(FinderOrder, MessageHasThePlatformsSign) {
    EXPECT_EQ(order("a", "b"), NSOrderedAscending);
    EXPECT_EQ(order("b", "a"), NSOrderedDescending);
    EXPECT_EQ(order("a", "a"), NSOrderedSame);
}

TEST_F(FinderOrder, DigitsCompareAsNumbers) {
    EXPECT_EQ(order("Item 9", "Item 10"), NSOrderedAscending);
    EXPECT_EQ(order("file2", "file10"), NSOrderedAscending);
    EXPECT_EQ(order("10", "9"), NSOrderedDescending);
}

TEST_F(FinderOrder, CaseDoesNotMatter) {
    EXPECT_EQ(order("abc", "ABC"), NSOrderedSame);
    EXPECT_EQ(order("\u00e4", "\u00c4"), NSOrderedSame);
}

TEST_F(FinderOrder, ComposedAndDecomposedLettersAreEqual) {
    EXPECT_EQ(order("\u00e9", "e\u0301"), NSOrderedSame);
    EXPECT_EQ(order("Andr\u00e9 1", "Andre\u0301 1"), NSOrderedSame);
}

TEST_F(FinderOrder, FullWidthLettersAreEqualToPlainOnes) {
    EXPECT_EQ(order("\uff21\uff22", "AB"), NSOrderedSame);
}

TEST_F(FinderOrder, PunctuationMatters) {
    EXPECT_NE(order("a-b", "ab"), NSOrderedSame);
    EXPECT_NE(order("a b", "ab"), NSOrderedSame);
}

TEST_F(FinderOrder, EmptyTextComesFirst) {
    EXPECT_EQ(order("", ""), NSOrderedSame);
    EXPECT_EQ(order("", "a"), NSOrderedAscending);
}

TEST_F(FinderOrder, LongTextsCompareToTheirEnd) {
    const std::string longText(1000, 'x');
    EXPECT_EQ(order(longText + "2", longText + "10"), NSOrderedAscending);
    EXPECT_EQ(order(longText + "a", longText + "A"), NSOrderedSame);
}

TEST_F(FinderOrder, ListSortedByTheWrapperIsAsTheFinderShowsIt) {
    std::vector<std::string> names{"Item 10", "item 9", "b", "\u00c4pfel", "Apfel", "Item 1"};
    std::sort(names.begin(), names.end(), [](const std::string& left, const std::string& right) {
        return compareLikeFinderWrapper(left, right) > 0;
    });
    EXPECT_THAT(names,
                testing::ElementsAre("Apfel", "\u00c4pfel", "b", "Item 1", "item 9", "Item 10"));
}

}  // namespace
}  // namespace tav::ula
