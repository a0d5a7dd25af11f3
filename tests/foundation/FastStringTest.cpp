// SPDX-License-Identifier: MIT
#include "ula/foundation/text/FastString.h"

#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>
#include <map>
#include <random>
#include <thread>

namespace tav::text {
namespace {

using test::assertionLine;
using test::LogCapture;
using testing::ElementsAre;

constexpr const char* kSource = "text/FastString";

TEST(FastStringTest, CopiesAndPartsShareTheBytes) {
    const String original("a text of some length");
    const String copy = original;
    EXPECT_EQ(copy.data(), original.data());
    const String part = original.substr(2, 4);
    EXPECT_EQ(part.data(), original.data() + 2);
    EXPECT_EQ(part, "text");
}

TEST(FastStringTest, APartOutlivesTheWhole) {
    String part;
    {
        const String whole(std::string(1000, 'x') + "end");
        part = whole.substr(1000);
    }
    EXPECT_EQ(part, "end");
}

TEST(FastStringTest, ALiteralIsViewedByAllItsCopies) {
    static const char text[] = "literal";
    const String literal = String::literal(text);
    const String copy = literal;
    EXPECT_EQ(literal.data(), text);
    EXPECT_EQ(copy.data(), text);
    EXPECT_EQ(copy.substr(3).data(), text + 3);
    EXPECT_EQ(literal.length(), 7U);
}

TEST(FastStringTest, ABorrowedTextIsCopiedWhenTheStringIsCopiedMovedOrCut) {
    std::string text = "temporary";
    String borrowed = String::borrow(text);
    EXPECT_EQ(borrowed.data(), text.data());
    const String copy = borrowed;
    const String part = borrowed.substr(4);
    String assigned;
    assigned = borrowed;
    const String moved = std::move(borrowed);
    text.assign("XXXXXXXXX");
    EXPECT_EQ(copy, "temporary");
    EXPECT_EQ(part, "orary");
    EXPECT_EQ(assigned, "temporary");
    EXPECT_EQ(moved, "temporary");
}

TEST(FastStringTest, ConstructionFromCStringAndStdStringCopies) {
    std::string text = "text";
    const String fromStd(text);
    const String fromC(text.c_str());
    text[0] = 'X';
    EXPECT_EQ(fromStd, "text");
    EXPECT_EQ(fromC, "text");
}

TEST(FastStringTest, ZerosAreBytesLikeOthers) {
    const String text("a\0b", 3);
    EXPECT_EQ(text.length(), 3U);
    EXPECT_EQ(text.toStdString(), std::string("a\0b", 3));
    EXPECT_FALSE(text == String("a"));
}

TEST(FastStringTest, AMovedFromStringIsEmpty) {
    String from("text");
    const String to = std::move(from);
    EXPECT_TRUE(from.empty());  // NOLINT: what a move leaves is documented
    EXPECT_EQ(to, "text");
}

TEST(FastStringTest, AssigningToItselfKeepsTheText) {
    String text("text");
    const String& same = text;
    text = same;
    EXPECT_EQ(text, "text");
}

TEST(FastStringTest, ANullTextIsAssertedAndEmpty) {
    LogCapture log;
    const char* null = nullptr;
    const String text(null);
    EXPECT_TRUE(text.empty());
    EXPECT_THAT(log.lines(), ElementsAre(assertionLine(kSource, 112, "szstr != 0")));
}

TEST(FastStringTest, OtherOperationsWithANullTextAreAsserted) {
    LogCapture log;
    const char* null = nullptr;
    String text("text");
    EXPECT_GT(text.compare(null), 0);
    EXPECT_FALSE(text == null);
    EXPECT_EQ(text.find(null), 0U);
    text = null;
    EXPECT_TRUE(text.empty());
    EXPECT_THAT(log.lines(), testing::Each(assertionLine(kSource, 148, "str != 0")));
    EXPECT_EQ(log.lines().size(), 4U);
}

TEST(FastStringTest, APartThatStartsBeyondTheEndIsAssertedAndEmpty) {
    const String text("text");
    LogCapture log;
    EXPECT_TRUE(text.substr(5).empty());
    EXPECT_THAT(log.lines(), ElementsAre(assertionLine(kSource, 203, "begin <= src.length()")));
}

TEST(FastStringTest, APartThatRunsPastTheEndIsAssertedAndCut) {
    const String text("text");
    LogCapture log;
    EXPECT_EQ(text.substr(2, 3), "xt");
    EXPECT_EQ(text.substr(2, String::npos - 1), "xt");
    const auto line = assertionLine(kSource, 204, "len == npos || begin+len <= src.length()");
    EXPECT_THAT(log.lines(), ElementsAre(line, line));
}

TEST(FastStringTest, APositionBeyondTheEndIsAssertedAndNotFound) {
    const String text("text");
    LogCapture log;
    EXPECT_EQ(text.find('t', 5), String::npos);
    EXPECT_EQ(text.find("t", 5), String::npos);
    const auto line = assertionLine(kSource, 309, "offset <= _length");
    EXPECT_THAT(log.lines(), ElementsAre(line, line));
}

TEST(FastStringTest, PartsAndPositionsAtTheEndAreInOrder) {
    const String text("text");
    LogCapture log;
    EXPECT_TRUE(text.substr(4).empty());
    EXPECT_TRUE(text.substr(4, 0).empty());
    EXPECT_EQ(text.substr(0, 4), "text");
    EXPECT_EQ(text.find('t', 4), String::npos);
    EXPECT_EQ(text.find('t', 1), 3U);
    EXPECT_EQ(text.find("ex"), 1U);
    EXPECT_EQ(text.find(""), 0U);
    EXPECT_TRUE(log.lines().empty());
}

/// The order as it is defined, one byte after the other.
int referenceOrder(const std::string& left, const std::string& right) {
    for (std::size_t i = 0; i < std::min(left.size(), right.size()); ++i)
        if (left[i] != right[i])
            return static_cast<signed char>(left[i]) < static_cast<signed char>(right[i]) ? -1 : 1;
    return left.size() < right.size() ? -1 : left.size() > right.size() ? 1 : 0;
}

TEST(FastStringTest, TheOrderIsThatOfSignedBytesWithAPrefixFirst) {
    std::mt19937 random(3);
    const std::string alphabet("\x00\x01\x7f\x80\xff"
                               "az",
                               7);
    for (int round = 0; round < 200'000; ++round) {
        std::string left(random() % 41, '\0');
        for (char& byte : left)
            byte = alphabet[random() % alphabet.size()];
        std::string right = left.substr(0, random() % (left.size() + 1));
        right.append(random() % 3, alphabet[random() % alphabet.size()]);
        if (!right.empty() && random() % 2)
            right[random() % right.size()] = static_cast<char>(random());
        const int expected = referenceOrder(left, right);
        ASSERT_EQ(String(left).compare(String(right)), expected);
        ASSERT_EQ(String(left) < String(right), expected < 0);
        ASSERT_EQ(String(left) == String(right), expected == 0);
        ASSERT_EQ(String(left) >= String(right), expected >= 0);
    }
}

TEST(FastStringTest, EqualTextsHaveEqualHashesWhateverTheirKind) {
    const std::hash<String> hash;
    const std::string text = "text";
    EXPECT_EQ(hash(String("text")), hash(String::literal("text")));
    EXPECT_EQ(hash(String("text")), hash(String::borrow(text)));
    EXPECT_NE(hash(String("text")), hash(String("Text")));
}

TEST(FastStringTest, AppendingGivesANewString) {
    EXPECT_EQ(String("ab") + String("cd"), "abcd");
    EXPECT_EQ(String() + String(), "");
}

TEST(FastStringTest, CopiesMayBeMadeAndReleasedInManyThreads) {
    const String shared("shared by all");
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([shared] {
            for (int round = 0; round < 20'000; ++round) {
                const String copy = shared;
                const String part = copy.substr(1, 5);
                ASSERT_EQ(part.length(), 5U);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(shared, "shared by all");
}

}  // namespace
}  // namespace tav::text
