// SPDX-License-Identifier: MIT
#include "tests/Mac/PListFixture.h"

#include <cstdint>
#include <cstdio>
#include <ctime>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tav::ula {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

/// Puts binary lists together, sound or not.
class BinaryList {
public:
    /// Adds an object; gives its number.
    std::uint8_t add(std::string_view bytes) {
        _offsets.push_back(_bytes.size());
        _bytes += bytes;
        return static_cast<std::uint8_t>(_offsets.size() - 1);
    }
    std::uint8_t text(const std::string& text) {
        return add(std::string(1, static_cast<char>(0x50 + text.size())) + text);
    }
    std::uint8_t dictionary(std::initializer_list<std::uint8_t> keysThenValues) {
        std::string bytes(1, static_cast<char>(0xD0 + keysThenValues.size() / 2));
        for (const std::uint8_t number : keysThenValues)
            bytes += static_cast<char>(number);
        return add(bytes);
    }
    /// A list { G = { K = value; }; } with this as the value's bytes.
    static std::string of(std::string_view value) {
        BinaryList list;
        const std::uint8_t group = list.text("G");
        const std::uint8_t key = list.text("K");
        const std::uint8_t number = list.add(value);
        const std::uint8_t keys = list.dictionary({key, number});
        return list.end(list.dictionary({group, keys}));
    }
    std::string end(std::uint64_t top) const {
        return end(top, _offsets.size(), _bytes.size(), 4, 1);
    }
    std::string end(std::uint64_t top, std::uint64_t count, std::uint64_t table,
                    std::uint64_t offsetSize, std::uint64_t referenceSize) const {
        std::string bytes = _bytes;
        for (const std::size_t offset : _offsets)
            append(bytes, offset, 4);
        bytes += std::string(6, '\0');
        append(bytes, offsetSize, 1);
        append(bytes, referenceSize, 1);
        for (const std::uint64_t field : {count, top, table})
            append(bytes, field, 8);
        return bytes;
    }

private:
    static void append(std::string& bytes, std::uint64_t value, int size) {
        for (int i = size - 1; i >= 0; --i)
            bytes += static_cast<char>(value >> (8 * i));
    }

    std::string _bytes = "bplist00";
    std::vector<std::size_t> _offsets;
};

class SettingsPListHostileTest : public PListFixture {
protected:
    bool read(std::string_view bytes) {
        writeList(bytes);
        groups.clear();
        const test::LogCapture log;
        const bool isDone = SettingsPList::readFile(path, groups, error);
        lines = log.lines();
        EXPECT_EQ(isDone, error.empty());
        return isDone;
    }
    /// Neither a crash nor anything read.
    void expectRefused(std::string_view bytes) {
        EXPECT_FALSE(read(bytes)) << bytes.substr(0, 200);
        EXPECT_THAT(groups, IsEmpty());
        EXPECT_THAT(error, HasSubstr(path));
        EXPECT_THAT(lines, IsEmpty());
    }
    void expectValueRefused(const std::string& value) {
        expectRefused(listOf(groupOf("<key>K</key>" + value)));
    }

    SettingsBase::GroupMap groups;
    std::string error;
    std::vector<std::string> lines;
};

TEST_F(SettingsPListHostileTest, WhatIsNoPropertyListIsRefused) {
    for (const char* bytes : {"",
                              "hello",
                              "<",
                              "<plist",
                              "<plist>",
                              "<plist/>",
                              "<plist></plist>",
                              "<plist><dict></dict>",
                              "<plist><dict/></plist>x",
                              "<dict><key>a</key></dict>",
                              "<dict>a</dict>",
                              "<dict><string>a</string><dict/></dict>",
                              "<html></html>",
                              "{",
                              "{ a = }",
                              "{ a = b",
                              "{ \"a",
                              "( a b )",
                              "<0>",
                              "{ a = <0g>; }",
                              "{ a = \\",
                              "/* ",
                              "bplist00",
                              "bplist",
                              "{\"version\": 1}"})
        expectRefused(bytes);
    expectRefused(std::string(4096, '\0'));
    std::string noise;
    for (int i = 0; i < 4096; ++i)
        noise += static_cast<char>(i * 37 + i / 256);
    expectRefused(noise);
}

TEST_F(SettingsPListHostileTest, AListOfNoDictionaryIsRefused) {
    for (const char* root : {"<array/>", "<string>x</string>", "<true/>", "<integer>1</integer>",
                             "<date>2026-11-21T08:30:00Z</date>"})
        expectRefused("<plist version=\"1.0\">" + std::string(root) + "</plist>");
    expectRefused("(a, b)");
    expectRefused("<616263>");
}

TEST_F(SettingsPListHostileTest, ValuesThatAreNoneAreRefused) {
    for (const char* value : {"<integer></integer>",
                              "<integer/>",
                              "<integer>1x</integer>",
                              "<integer>--1</integer>",
                              "<integer>1.5</integer>",
                              "<integer>18446744073709551616</integer>",
                              "<integer>-9223372036854775809</integer>",
                              "<integer>0x</integer>",
                              "<real></real>",
                              "<real>x</real>",
                              "<real>+-1</real>",
                              "<real>1e999</real>",
                              "<true>x</true>",
                              "<date>x</date>",
                              "<data>*</data>",
                              "<string>a<b/></string>",
                              "<string>a</key>",
                              "<float>1</float>",
                              "<string>&unknown;</string>",
                              "<string>&#0;</string>",
                              "<string>&#x110000;</string>",
                              "<string>a & b</string>",
                              "<string>a",
                              "<array>",
                              "x"})
        expectValueRefused(value);
}

TEST_F(SettingsPListHostileTest, NumbersThatAreNoneAreNumbersAllTheSame) {
    for (const char* text : {"nan", "NaN", "inf", "-infinity", "+Infinity", "-1e-300", " 2 "})
        EXPECT_TRUE(read(listOf(groupOf("<key>K</key><real>" + std::string(text) + "</real>"))))
            << text << error;
}

TEST_F(SettingsPListHostileTest, EntitiesAreNeverExpandedAndNothingElseIsRead) {
    std::string bomb = "<!DOCTYPE plist [<!ENTITY a0 \"ha\">";
    for (int i = 1; i < 30; ++i)
        bomb += "<!ENTITY a" + std::to_string(i) + " \"&a" + std::to_string(i - 1) + ";&a" +
                std::to_string(i - 1) + ";\">";
    expectRefused(bomb + "]><plist><dict><key>&a29;</key><dict/></dict></plist>");
    EXPECT_TRUE(read(bomb + "]><plist><dict><key>G</key><dict/></dict></plist>"));
    test::writeFile(home / "secret", "secret");
    expectRefused("<!DOCTYPE plist [<!ENTITY x SYSTEM \"" + (home / "secret") +
                  "\">]><plist><dict><key>&x;</key><dict/></dict></plist>");
}

TEST_F(SettingsPListHostileTest, AMillionLevelsAreRefused) {
    constexpr int kLevels = 1'000'000;
    std::string arrays, dictionaries;
    for (int i = 0; i < kLevels; ++i) {
        arrays += "<array>";
        dictionaries += "<dict><key>a</key>";
    }
    expectRefused(arrays);
    expectRefused(dictionaries);
    expectRefused(std::string(kLevels, '('));
    expectRefused(std::string(kLevels, '{'));
}

TEST_F(SettingsPListHostileTest, EveryTruncationHasADefinedResult) {
    SettingsPList settings("Viewer", "Acme", true);
    for (int i = 0; i < 30; ++i)
        settings.setGeneric("Group", FastString("Key \xC3\xA9" + std::to_string(i)), "a & b");
    settings.setGeneric("Other", "list", std::vector<FastString>{"x", "y"});
    settings.setGeneric("Other", "real", 1.5);
    ASSERT_TRUE(settings.write());
    const std::string whole = test::readFile(path);
    const std::size_t end = whole.rfind('>') + 1;
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_EQ(read(std::string_view(whole).substr(0, length)), length >= end) << length;
        EXPECT_EQ(groups.size(), length >= end ? 2U : 0U);
    }
}

TEST_F(SettingsPListHostileTest, EveryTruncationAndEveryChangedByteOfABinaryListIsSurvived) {
    BinaryList list;
    const std::uint8_t group = list.text("Group");
    const std::uint8_t first = list.text("first");
    const std::uint8_t second = list.text("second");
    const std::uint8_t integer = list.add(std::string_view("\x11\x01\x02", 3));
    const std::uint8_t array = list.add(std::string_view("\xA2\x01\x02", 3));
    const std::uint8_t keys = list.dictionary({first, second, integer, array});
    const std::string whole = list.end(list.dictionary({group, keys}));
    ASSERT_TRUE(read(whole)) << error;
    EXPECT_EQ(groups.at("Group").at("first").asInt(), 0x102);
    EXPECT_EQ(groups.at("Group").at("second").asStringArray().size(), 2U);
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(read(std::string_view(whole).substr(0, length))) << length;
    for (std::size_t place = 0; place < whole.size(); ++place)
        for (const int byte : {0, 1, 0x0F, 0x1F, 0x5F, 0x6F, 0x7F, 0x80, 0xAF, 0xDF, 0xFF}) {
            std::string changed = whole;
            changed[place] = static_cast<char>(byte);
            if (!read(changed)) {
                EXPECT_THAT(error, HasSubstr(path));
            }
        }
}

TEST_F(SettingsPListHostileTest, CyclesAndReferencesToNothingAreRefused) {
    BinaryList self;
    const std::uint8_t name = self.text("G");
    expectRefused(self.end(self.dictionary({name, 1})));
    BinaryList pair;
    const std::uint8_t key = pair.text("G");
    pair.dictionary({key, 2});
    expectRefused(pair.end(pair.dictionary({key, 1})));
    BinaryList dangling;
    expectRefused(dangling.end(dangling.dictionary({dangling.text("G"), 200})));
    BinaryList number;
    const std::uint8_t one = number.add(std::string_view("\x10\x01", 2));
    expectRefused(number.end(number.dictionary({one, one})));
    expectRefused(BinaryList().end(0));
}

TEST_F(SettingsPListHostileTest, BadTrailersAreRefused) {
    BinaryList list;
    const std::uint8_t top = list.dictionary({});
    ASSERT_TRUE(read(list.end(top))) << error;
    constexpr std::uint64_t kHuge = ~std::uint64_t{0};
    expectRefused(list.end(1));
    expectRefused(list.end(kHuge));
    expectRefused(list.end(top, kHuge, 9, 4, 1));
    expectRefused(list.end(top, kHuge / 4, 9, 4, 1));
    expectRefused(list.end(top, 1, kHuge, 4, 1));
    expectRefused(list.end(top, 1, 0, 4, 1));
    expectRefused(list.end(top, 1, 9, 0, 1));
    expectRefused(list.end(top, 1, 9, 9, 1));
    expectRefused(list.end(top, 1, 9, 4, 0));
    expectRefused(list.end(top, 1, 9, 4, 255));
}

TEST_F(SettingsPListHostileTest, HugeCountsAreRefused) {
    for (const char kind : {'\x4F', '\x5F', '\x6F', '\x7F', '\xAF', '\xCF', '\xDF'})
        for (const char byte : {'\x7F', '\xFF'})
            expectRefused(BinaryList::of(std::string(1, kind) + '\x13' + std::string(8, byte)));
}

TEST_F(SettingsPListHostileTest, NumbersOfBinaryListsAreThoseOfTheStoreOrNone) {
    using namespace std::string_view_literals;
    EXPECT_TRUE(read(BinaryList::of("\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFB"sv)));
    EXPECT_EQ(groups.at("G").at("K").asInt(), -5);
    const std::string zeros(8, '\0');
    EXPECT_TRUE(read(BinaryList::of("\x14" + zeros + zeros.substr(1) + "\x05")));
    EXPECT_EQ(groups.at("G").at("K").asInt(), 5);
    const auto skipped = [&] {
        EXPECT_THAT(lines, testing::ElementsAre(
                               test::assertionLine("src/Mac/SettingsPList", 125, "false")));
        EXPECT_THAT(groups.at("G"), IsEmpty());
    };
    EXPECT_TRUE(read(BinaryList::of("\x14" + zeros + "\xFF" + zeros.substr(1))));
    skipped();
    EXPECT_TRUE(read(BinaryList::of("\x22\x3F\x80\0\0"sv)));  // a float
    skipped();
    EXPECT_TRUE(read(BinaryList::of("\x23\x7F\xF8\0\0\0\0\0\0"sv)));  // no number
    EXPECT_EQ(groups.at("G").at("K").type(), SETTINGSTYPE_DOUBLE);
    expectRefused(BinaryList::of("\x14" + std::string(16, '\x01')));
    for (const auto value : {"\x15\0"sv, "\x1F"sv, "\x20\0"sv, "\x21\0\0"sv, "\x00"sv, "\x0F"sv,
                             "\x80\0"sv, "\x90"sv, "\xB0"sv, "\xE0"sv, "\xF0"sv})
        expectRefused(BinaryList::of(value));
    EXPECT_FALSE(read(BinaryList::of("\x33\0\0\0\0\0\0\0\0"sv)));  // a date
    EXPECT_THAT(lines,
                testing::ElementsAre(test::assertionLine("src/Mac/SettingsPList", 129, "false")));
}

TEST_F(SettingsPListHostileTest, TextsOfBinaryListsAreMadeValid) {
    using namespace std::string_view_literals;
    EXPECT_TRUE(read(BinaryList::of("\x61\xD8\x00"sv)));
    EXPECT_EQ(groups.at("G").at("K").asString(), "\xEF\xBF\xBD");
    EXPECT_TRUE(read(BinaryList::of("\x62\xD8\x3D\xDE\x00"sv)));
    EXPECT_EQ(groups.at("G").at("K").asString(), "\xF0\x9F\x98\x80");
    expectRefused(BinaryList::of("\x52\xFF\xFE"sv));
}

/// A list of dictionaries, each of which holds the next one twice.
TEST_F(SettingsPListHostileTest, AListThatUnfoldsWithoutEndIsRefused) {
    BinaryList list;
    const std::uint8_t left = list.text("a");
    const std::uint8_t right = list.text("b");
    std::uint8_t inner = list.add(std::string_view("\x10\x01", 2));
    for (int i = 0; i < 40; ++i)
        inner = list.dictionary({left, right, inner, inner});
    expectRefused(list.end(inner));
}

TEST_F(SettingsPListHostileTest, ObjectsLaidOverEachOtherTakeNoTimeToSpeakOf) {
    // Half of the file is one array; every object begins in it.
    std::string bytes = "bplist00";
    constexpr std::size_t kObjects = 20'000;
    bytes += "\xAF\x12";
    bytes += std::string("\0\0\x27\x10", 4);
    for (std::size_t i = 0; i < 10'000; ++i)
        bytes += std::string("\0\x01", 2);
    const std::size_t table = bytes.size();
    for (std::size_t i = 0; i < kObjects; ++i)
        bytes += std::string("\0\x08", 2);
    bytes += std::string(6, '\0') + "\x02\x02";
    for (const std::size_t field : {kObjects, std::size_t{0}, table})
        for (int shift = 56; shift >= 0; shift -= 8)
            bytes += static_cast<char>(field >> shift);
    const std::clock_t begin = std::clock();
    expectRefused(bytes);
    EXPECT_LT((std::clock() - begin) / CLOCKS_PER_SEC, 5);
}

TEST_F(SettingsPListHostileTest, OnlyRegularFilesOfABearableSizeAreRead) {
    EXPECT_FALSE(SettingsPList::readFile(folder, groups, error));
    EXPECT_EQ(error, folder + ": is a folder");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_FALSE(SettingsPList::readFile(path, groups, error));
    EXPECT_EQ(error, path + ": is not a regular file");
    std::filesystem::remove(path);
    writeList("");
    std::filesystem::resize_file(path, std::uintmax_t{1} << 30);
    EXPECT_FALSE(SettingsPList::readFile(path, groups, error));
    EXPECT_EQ(error, path + ": larger than 256 MiB, the most that is read");
}

}  // namespace
}  // namespace tav::ula
