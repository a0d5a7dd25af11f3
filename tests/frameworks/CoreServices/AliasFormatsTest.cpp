// SPDX-License-Identifier: MIT
#include "AliasBytes.h"
#include "CoreServices/AliasRecord.h"
#include "CoreServices/BookmarkData.h"
#include "CoreServices/ResourceFork.h"
#include "tests/support/TemporaryFolder.h"

#include <random>

#include <gtest/gtest.h>

namespace {

using namespace coreservices;
using namespace aliastest;
using Names = std::vector<std::string>;

// By another program; see make.py beside them.
std::string genuine(const std::string& name) {
    return tav::test::readFile(ULA_ALIAS_DATA "/" + name);
}

void expectAlias(const std::optional<MacAlias>& alias, const std::string& volume,
                 const Names& components, AliasKind kind, bool onStartupVolume = false) {
    ASSERT_TRUE(alias.has_value());
    EXPECT_EQ(alias->volumeName, volume);
    EXPECT_EQ(alias->components, components);
    EXPECT_EQ(alias->kind, kind);
    EXPECT_EQ(alias->onStartupVolume, onStartupVolume);
}

TEST(BookmarkData, OfAnotherProgramIsRead) {
    expectAlias(parseBookmark(genuine("bookmark-folder")), "Macintosh HD",
                {"Users", "ann", "Fotos a\u0308o\u0308u\u0308"}, AliasKind::Folder, true);
    expectAlias(parseBookmark(genuine("bookmark-file")), "Stick", {"Photos", "one.jpg"},
                AliasKind::File);
    expectAlias(parseBookmark(genuine("bookmark-disk")), "Stick", {}, AliasKind::Disk);
}

TEST(BookmarkData, IsReadAsAFileOfItsOwnAndWithin) {
    BookmarkBytes bytes;
    bytes.path({"Volumes", "My Stick", "a", "b"}).volume("/Volumes/My Stick", "My Stick").flags(2);
    for (const std::string& content : {bytes.file(), bytes.data()})
        expectAlias(parseBookmark(content), "My Stick", {"a", "b"}, AliasKind::Folder);
}

TEST(BookmarkData, TakesTheVolumesPathAsTextAndAsNames) {
    BookmarkBytes bytes;
    bytes.path({"Volumes", "Stick", "a"}).entry(0x2002, bytes.addNames({"Volumes", "Stick"}));
    expectAlias(parseBookmark(bytes.data()), "Stick", {"a"}, AliasKind::File);
}

TEST(BookmarkData, KnowsTheStartupVolumeByFlagOrByPath) {
    BookmarkBytes flagged;
    flagged.path({"System", "Volumes", "Data", "x"}).volume("/System/Volumes/Data", "Data");
    flagged.entry(0x2030, flagged.add(0x0501, ""));
    expectAlias(parseBookmark(flagged.data()), "Data", {"x"}, AliasKind::File, true);
    BookmarkBytes plain;
    plain.path({"x"}).volume("/", "Disk");
    expectAlias(parseBookmark(plain.data()), "Disk", {"x"}, AliasKind::File, true);
}

TEST(BookmarkData, WithNamesThatLeadElsewhereIsRefused) {
    for (const char* name : {"..", ".", "", "a/b"})
        EXPECT_FALSE(parseBookmark(BookmarkBytes().path({"x", name}).data())) << name;
    EXPECT_FALSE(parseBookmark(BookmarkBytes().path({std::string("a\0b", 3)}).data()));
    EXPECT_FALSE(parseBookmark(BookmarkBytes().path({"x"}).volume("/a/../b", "b").data()));
}

TEST(BookmarkData, KeepsNamesThatAreNotUtf8) {
    expectAlias(parseBookmark(BookmarkBytes().path({"a\xFF 100%", "\n"}).data()), "",
                {"a\xFF 100%", "\n"}, AliasKind::File, true);
}

TEST(BookmarkData, WithoutAPathIsNone) {
    EXPECT_FALSE(parseBookmark(BookmarkBytes().volume("/", "Disk").data()));
    EXPECT_FALSE(parseBookmark(""));
    EXPECT_FALSE(parseBookmark("bookkeeping"));
    EXPECT_FALSE(parseBookmark(std::string(200, 'b')));
}

// Whatever is missing at the end, nothing is read beyond it. The path may come before the cut.
TEST(BookmarkData, CutAtAnyByteIsReadNoFurther) {
    BookmarkBytes bytes;
    std::string whole = bytes.path({"a", "b"}).volume("/", "Disk").flags(2).file();
    for (size_t length = 0; length < whole.size(); ++length) {
        std::string cut(whole, 0, length);
        auto alias = parseBookmark(std::string_view(cut.data(), cut.size()));
        EXPECT_TRUE(!alias || alias->components == (Names{"a", "b"})) << length;
    }
    EXPECT_TRUE(parseBookmark(whole));
}

TEST(BookmarkData, WithAnyNumberOutOfRangeIsReadNoFurther) {
    BookmarkBytes bytes;
    std::string whole = bytes.path({"a", "b"}).volume("/", "Disk").flags(2).file();
    for (size_t at = 0; at + 4 <= whole.size(); ++at)
        for (uint32_t number : {0u, 1u, 0x40000000u, 0x7FFFFFFFu, 0xFFFFFFFCu, 0xFFFFFFFFu}) {
            std::string wrong = whole;
            wrong.replace(at, 4, little(number, 4));
            auto alias = parseBookmark(wrong);
            if (!alias)
                continue;
            EXPECT_LE(alias->components.size(), 2u);
            // Nothing but what stands in it.
            for (const std::string& name : alias->components)
                EXPECT_NE(wrong.find(name), std::string::npos) << at << " " << number;
        }
}

TEST(BookmarkData, WhoseTablesFormARingIsRefused) {
    std::string whole = BookmarkBytes().volume("/", "Disk").data();
    size_t body = 48;
    size_t table = whole.find(little(0xFFFFFFFE, 4)) - 4;
    whole.replace(table + 12, 4, little(table - body, 4));
    EXPECT_FALSE(parseBookmark(whole));
}

TEST(BookmarkData, ThatNamesOneLargeTextManyTimesIsRefused) {
    BookmarkBytes bytes;
    uint32_t large = bytes.addText(std::string(1 << 19, 'x'));
    std::string offsets;
    for (int i = 0; i < 1000; ++i)
        offsets += little(large, 4);
    bytes.entry(0x1004, bytes.add(0x0601, offsets));
    EXPECT_FALSE(parseBookmark(bytes.data()));
}

TEST(AliasRecord, OfAnotherProgramIsRead) {
    expectAlias(parseAliasRecord(genuine("record-folder")), "Stick", {"Photos"}, AliasKind::Folder);
    expectAlias(parseAliasRecord(genuine("record-file")), "Stick", {"one: two.jpg"},
                AliasKind::File);
    expectAlias(parseAliasRecord(genuine("record-disk")), "Stick", {}, AliasKind::Disk);
}

TEST(AliasRecord, OfVersion3IsRead) {
    RecordFields fields;
    fields.version = 3;
    std::string name = big(2, 2) + big('D', 2) + big(0xE9, 2);
    fields.values = {{15, name}, {18, "/Users/ann"}, {19, "/"}};
    expectAlias(parseAliasRecord(aliasRecord(fields)), "D\u00E9", {"Users", "ann"},
                AliasKind::Folder, true);
}

TEST(AliasRecord, PrefersThePosixPathAndTheUnicodeName) {
    RecordFields fields;
    fields.volumeName = "old";
    fields.values = {{2, "old:x"}, {15, big(1, 2) + big('/', 2)}, {18, "a/b"}};
    expectAlias(parseAliasRecord(aliasRecord(fields)), ":", {"a", "b"}, AliasKind::Folder);
}

TEST(AliasRecord, ReadsTheOldPathInTheOldEncoding) {
    RecordFields fields;
    fields.kind = 0;
    fields.volumeName = "Tr\x8Ash";
    fields.values = {{2, "Tr\x8Ash:Fotos 1/2:M\x9Fll \xF0"}};
    expectAlias(parseAliasRecord(aliasRecord(fields)), "Tr\u00E4sh",
                {"Fotos 1:2", "M\u00FCll \uF8FF"}, AliasKind::File);
}

TEST(AliasRecord, TakesCharactersBeyond16Bits) {
    RecordFields fields;
    std::string name = big(4, 2) + big(0xD83D, 2) + big(0xDE00, 2) + big(0xD83D, 2) + big('x', 2);
    fields.values = {{15, name}, {18, "/a"}};
    expectAlias(parseAliasRecord(aliasRecord(fields)), "\U0001F600\uFFFDx", {"a"},
                AliasKind::Folder);
}

TEST(AliasRecord, ToTheTopOfAVolumeIsADisk) {
    RecordFields fields;
    fields.targetNumber = 2;
    fields.values = {{18, "/odd"}};
    EXPECT_EQ(parseAliasRecord(aliasRecord(fields))->kind, AliasKind::Disk);
    fields.targetNumber = 77;
    fields.values = {{18, "/"}};
    EXPECT_EQ(parseAliasRecord(aliasRecord(fields))->kind, AliasKind::Disk);
}

TEST(AliasRecord, WithoutAPathOrWithOneThatLeadsElsewhereIsRefused) {
    RecordFields fields;
    fields.volumeName = "Disk";
    EXPECT_FALSE(parseAliasRecord(aliasRecord(fields)));
    fields.values = {{18, "/a/../../b"}};
    EXPECT_FALSE(parseAliasRecord(aliasRecord(fields)));
    fields.values = {{2, ":"}};
    EXPECT_FALSE(parseAliasRecord(aliasRecord(fields)));
    EXPECT_FALSE(parseAliasRecord(""));
    EXPECT_FALSE(parseAliasRecord(std::string(150, '\0')));
}

TEST(AliasRecord, CutAtAnyByteIsRefused) {
    RecordFields fields;
    fields.values = {{18, "/a"}, {19, "/"}};
    std::string whole = aliasRecord(fields);
    for (size_t length = 0; length < whole.size(); ++length) {
        std::string cut(whole, 0, length);
        EXPECT_FALSE(parseAliasRecord(std::string_view(cut.data(), cut.size()))) << length;
    }
    EXPECT_TRUE(parseAliasRecord(whole));
}

TEST(AliasRecord, WhoseValuesClaimMoreThanThereIsIsRefused) {
    RecordFields fields;
    fields.values = {{18, "/a"}};
    std::string whole = aliasRecord(fields);
    whole.replace(152, 2, big(0xFFF0, 2));
    EXPECT_FALSE(parseAliasRecord(whole));
}

TEST(AliasRecord, IsToldByASizeThatFits) {
    RecordFields fields;
    fields.values = {{18, "/a"}};
    std::string whole = aliasRecord(fields);
    EXPECT_TRUE(beginsAsAliasRecord(whole, whole.size()));
    EXPECT_FALSE(beginsAsAliasRecord(whole, whole.size() + 1));
    EXPECT_FALSE(beginsAsAliasRecord("short", 5));
}

TEST(ResourceFork, GivesTheFirstResourceOfAType) {
    std::string fork = resourceFork("alis", "content");
    EXPECT_EQ(firstResource(fork, 0x616C6973), "content");
    EXPECT_EQ(firstResource(fork, 0x69636E23), std::nullopt);
    EXPECT_EQ(firstResource("", 0x616C6973), std::nullopt);
}

TEST(ResourceFork, CutAtAnyByteGivesNothing) {
    std::string whole = resourceFork("alis", "content");
    for (size_t length = 0; length < whole.size(); ++length) {
        std::string cut(whole, 0, length);
        EXPECT_EQ(firstResource(std::string_view(cut.data(), cut.size()), 0x616C6973),
                  std::nullopt);
    }
}

TEST(ResourceFork, OfACompanionIsFoundWithTheFindersNotes) {
    std::string whole = companion("fdrp", 0x8000, "fork");
    auto content = parseCompanion(whole);
    ASSERT_TRUE(content);
    EXPECT_EQ(content->finderType, 0x66647270u);
    EXPECT_EQ(content->finderFlags, 0x8000);
    EXPECT_EQ(content->resourceFork, "fork");
    EXPECT_FALSE(parseCompanion(std::string(100, '\0')));
    EXPECT_FALSE(parseCompanion(""));
}

TEST(ResourceFork, EntriesOutOfRangeAreLeftOut) {
    std::string whole = companion("fdrp", 0x8000, "fork");
    whole.replace(46, 4, big(0x40000000, 4));
    EXPECT_EQ(parseCompanion(whole)->resourceFork, "");
    EXPECT_EQ(parseCompanion(whole)->finderFlags, 0x8000);
}

// Whatever bytes stand anywhere: the sanitizers look on.
TEST(AliasFormats, SurviveAnyChange) {
    std::mt19937 random(1);
    RecordFields fields;
    fields.values = {{2, "Disk:a"}, {15, big(1, 2) + big('D', 2)}, {18, "/a"}};
    const std::string wholes[] = {
        BookmarkBytes().path({"a", "b"}).volume("/", "Disk").flags(2).file(), aliasRecord(fields),
        companion("fdrp", 0x8000, resourceFork("alis", aliasRecord(fields)))};
    for (const std::string& whole : wholes)
        for (int i = 0; i < 20'000; ++i) {
            std::string wrong = whole;
            for (int changes = 0; changes < 3; ++changes)
                wrong[random() % wrong.size()] = static_cast<char>(random() % 256);
            parseBookmark(wrong);
            parseAliasRecord(wrong);
            if (auto content = parseCompanion(wrong))
                firstResource(content->resourceFork, 0x616C6973);
        }
}

}  // namespace
