// SPDX-License-Identifier: MIT
#include "tests/Mac/PListFixture.h"
#include "ula/SpecialFolders.h"

#include <cmath>
#include <limits>

namespace tav::ula {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Texts = std::vector<FastString>;

constexpr const char* kSource = "src/Mac/SettingsPList";

class SettingsPListTest : public PListFixture {
protected:
    /// Reads a group of one key "K".
    bool readValue(SettingsPList& settings, const std::string& value) {
        writeRoot(groupOf("<key>K</key>" + value));
        return settings.read();
    }
    static SettingsType typeOf(const SettingsPList& settings) {
        const auto& groups = settings.getAllSettings();
        const auto group = groups.find("G");
        const auto key = group->second.find("K");
        return key == group->second.end() ? SETTINGSTYPE_INVALID : key->second.type();
    }
};

TEST_F(SettingsPListTest, TheFileIsNamedAfterCompanyAndApplication) {
    const auto settings = open();
    EXPECT_EQ(settings->buildFileName(false), "/Library/Preferences/com.Acme.Viewer.plist");
    EXPECT_EQ(settings->buildFileName(true),
              SpecialFolders::home().toStdString() + "/Library/Preferences/com.Acme.Viewer.plist");
    EXPECT_EQ(SpecialFolders::home(), FastString(home.path().string()));
    EXPECT_EQ(SettingsPList::fileName("a B", "c/D", false),
              "/Library/Preferences/com.c/D.a B.plist");
}

TEST_F(SettingsPListTest, EveryTypeReadsBackAsItself) {
    {
        const auto settings = open();
        settings->setGeneric("G", "int", -7);
        settings->setGeneric("G", "least", std::numeric_limits<int>::min());
        settings->setGeneric("G", "yes", true);
        settings->setGeneric("G", "no", false);
        settings->setGeneric("G", "double", 0.1);
        settings->setGeneric("G", "whole", 2.0);
        settings->setGeneric("G", "infinite", -std::numeric_limits<double>::infinity());
        settings->setGeneric("G", "text", "a & <b> \"c\" 'd'\n\t\r \xC3\xA9 \xF0\x9F\x98\x80");
        settings->setGeneric("G", "empty", "");
        settings->setGeneric("G", "texts", Texts{"a", "", "<c>"});
        settings->setGeneric("G", "none", Texts());
        settings->setGeneric("\xC3\x89", "<key> & more", 1);
        ASSERT_TRUE(settings->write());
        const auto again = open();
        EXPECT_EQ(again->getAllSettings(), settings->getAllSettings());
    }
    EXPECT_EQ(open()->getBool("G", "yes", false), true);
}

TEST_F(SettingsPListTest, NoNumberStaysNone) {
    open()->setGeneric("G", "K", std::nan(""));
    EXPECT_TRUE(std::isnan(open()->getDouble("G", "K", 0)));
}

TEST_F(SettingsPListTest, TheFileIsThePlatforms) {
    const auto settings = open();
    settings->setGeneric("Window", "Width", 1280);
    settings->setGeneric("Window", "Titles", Texts{"a&b"});
    ASSERT_TRUE(settings->write());
    EXPECT_EQ(test::readFile(path),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
              "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
              "<plist version=\"1.0\">\n<dict>\n\t<key>Window</key>\n\t<dict>\n"
              "\t\t<key>Titles</key>\n\t\t<array>\n\t\t\t<string>a&amp;b</string>\n\t\t</array>\n"
              "\t\t<key>Width</key>\n\t\t<integer>1280</integer>\n\t</dict>\n</dict>\n</plist>\n");
}

TEST_F(SettingsPListTest, TheDestructorAlwaysWritesAndTheConstructorReads) {
    open()->setGeneric("G", "K", 5);
    EXPECT_EQ(open()->getInt("G", "K", 0), 5);
}

TEST_F(SettingsPListTest, TheFolderIsMadeWhereThereIsNone) {
    std::filesystem::remove_all(home / "Library");
    open()->setGeneric("G", "K", 5);
    EXPECT_EQ(open()->getInt("G", "K", 0), 5);
}

TEST_F(SettingsPListTest, AFailedReadEmptiesTheStoreAndTheDestructorWritesThat) {
    {
        const auto settings = open();
        settings->setGeneric("G", "K", 5);
        ASSERT_TRUE(settings->write());
        ASSERT_TRUE(settings->read());
        std::filesystem::remove(path);
        EXPECT_FALSE(settings->read());
        EXPECT_THAT(settings->allGroups(), IsEmpty());
        EXPECT_EQ(settings->lastError(), path + ": there is no such file");
    }
    EXPECT_THAT(test::readFile(path), HasSubstr("<dict/>\n</plist>"));
}

TEST_F(SettingsPListTest, ReadingReplacesTheWholeStore) {
    const auto settings = open();
    settings->setGeneric("Memory", "K", 1);
    writeRoot(groupOf("<key>K</key><integer>2</integer>"));
    EXPECT_TRUE(settings->read());
    EXPECT_THAT(settings->allGroups(), ElementsAre("G"));
}

TEST_F(SettingsPListTest, ReadingEmitsNoChange) {
    const auto settings = open();
    int changes = 0;
    settings->changed().connect([&changes] { ++changes; });
    writeRoot(groupOf("<key></key><integer>2</integer>") + "<key></key><dict/>");
    const test::LogCapture log;
    EXPECT_TRUE(settings->read());
    EXPECT_EQ(changes, 0);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(SettingsPListTest, AGroupWithoutKeysIsReadAndWritten) {
    const auto settings = open();
    writeRoot("<key>Empty</key><dict/><key>Long</key><dict></dict>");
    EXPECT_TRUE(settings->read());
    EXPECT_THAT(settings->allGroups(), ElementsAre("Empty", "Long"));
    EXPECT_TRUE(settings->write());
    EXPECT_TRUE(settings->read());
    EXPECT_THAT(settings->allGroups(), ElementsAre("Empty", "Long"));
}

TEST_F(SettingsPListTest, WiderIntegersAreCut) {
    const auto settings = open();
    EXPECT_TRUE(readValue(*settings, "<integer>4294967298</integer>"));
    EXPECT_EQ(settings->getInt("G", "K", 0), 2);
    EXPECT_TRUE(readValue(*settings, "<integer> 0x100000003 </integer>"));
    EXPECT_EQ(settings->getInt("G", "K", 0), 3);
    EXPECT_TRUE(readValue(*settings, "<integer>-9223372036854775808</integer>"));
    EXPECT_EQ(settings->getInt("G", "K", 1), 0);
}

TEST_F(SettingsPListTest, ADateEmptiesTheStoreWithAnAssertion) {
    const auto settings = open();
    settings->setGeneric("Memory", "K", 1);
    const test::LogCapture log;
    EXPECT_FALSE(readValue(*settings, "<date>2026-11-21T08:30:00Z</date>"));
    EXPECT_THAT(settings->allGroups(), IsEmpty());
    EXPECT_THAT(log.lines(), ElementsAre(test::assertionLine(kSource, 129, "false")));
    EXPECT_THAT(settings->lastError(),
                HasSubstr("group \"G\", key \"K\" holds what is no setting"));
}

TEST_F(SettingsPListTest, SoDoDataADictionaryAndAnArrayOfOthersThanTexts) {
    const auto settings = open();
    for (const char* value : {"<data>YWJj</data>", "<dict/>", "<array><integer>1</integer></array>",
                              "<array><array/></array>"}) {
        const test::LogCapture log;
        EXPECT_FALSE(readValue(*settings, value)) << value;
        EXPECT_THAT(settings->allGroups(), IsEmpty());
        EXPECT_THAT(log.lines(), ElementsAre(test::assertionLine(kSource, 129, "false"))) << value;
    }
}

TEST_F(SettingsPListTest, ANumberOfAnotherKindIsSkippedWithAnAssertion) {
    const auto settings = open();
    // More than 63 bits: no signed number.
    writeRoot(groupOf("<key>K</key><integer>9223372036854775808</integer>"
                      "<key>L</key><integer>1</integer>"));
    const test::LogCapture log;
    EXPECT_TRUE(settings->read());
    EXPECT_THAT(settings->allValuesNamesOfGroup("G"), ElementsAre("L"));
    EXPECT_THAT(log.lines(), ElementsAre(test::assertionLine(kSource, 125, "false")));
}

TEST_F(SettingsPListTest, AGroupThatIsNoDictionaryEndsTheReading) {
    const auto settings = open();
    const test::LogCapture log;
    writeRoot("<key>Bad</key><string>x</string>");
    EXPECT_FALSE(settings->read());
    EXPECT_THAT(settings->allGroups(), IsEmpty());
    EXPECT_THAT(settings->lastError(), HasSubstr("group \"Bad\" is no dictionary"));
    writeRoot("<key>A</key><dict/><key>B</key><dict/><key>Bad</key><true/>");
    EXPECT_FALSE(settings->read());
    // In the dictionary's own order, which is none: what came before stays.
    for (const FastString& name : settings->allGroups())
        EXPECT_TRUE(name == "A" || name == "B");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(SettingsPListTest, OfEqualKeysTheLastOneCounts) {
    const auto settings = open();
    for (const char* doctype : {"", "<!DOCTYPE plist [<!-- not for the quick reader -->]>"}) {
        writeList(std::string(doctype) +
                  "<plist version=\"1.0\"><dict><key>G</key><dict><key>A</key><true/></dict>"
                  "<key>G</key><dict><key>K</key><integer>1</integer><key>K</key>"
                  "<string>x</string></dict></dict></plist>");
        EXPECT_TRUE(settings->read());
        EXPECT_THAT(settings->allValuesNamesOfGroup("G"), ElementsAre("K"));
        EXPECT_EQ(typeOf(*settings), SETTINGSTYPE_STRING);
    }
}

TEST_F(SettingsPListTest, AWriteThatFailsSaysSoAndLogsNothing) {
    const auto settings = open();
    settings->setGeneric("G", "K", 1);
    ASSERT_TRUE(settings->write());
    const std::string before = test::readFile(path);
    const test::LogCapture log;
    settings->setGeneric("G", "K", "\x01");
    EXPECT_FALSE(settings->write());
    EXPECT_THAT(
        settings->lastError(),
        testing::EndsWith(": group \"G\", key \"K\": XML cannot carry byte 0x01 at position 0"));
    settings->setGeneric("G", "K", "not \xFF UTF-8");
    EXPECT_FALSE(settings->write());
    EXPECT_EQ(test::readFile(path), before);
    std::filesystem::remove_all(folder);
    test::writeFile(folder, "in the way");
    settings->setGeneric("G", "K", 2);
    EXPECT_FALSE(settings->write());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(SettingsPListTest, ARecordWithoutATypeIsLeftOut) {
    const auto settings = open();
    settings->setGeneric("G", "K", SettingsBase::Setting());
    EXPECT_TRUE(settings->write());
    EXPECT_TRUE(settings->read());
    EXPECT_THAT(settings->allGroups(), ElementsAre("G"));
    EXPECT_THAT(settings->allValuesNamesOfGroup("G"), IsEmpty());
}

TEST_F(SettingsPListTest, TheListBeforeStaysAsTheBackup) {
    open()->setGeneric("G", "K", 1);
    const std::string first = test::readFile(path);
    EXPECT_THAT(namesBeside(), ElementsAre(kName));
    open()->setGeneric("G", "K", 2);
    EXPECT_EQ(test::readFile(path + ".bak"), first);
    // The same once more, and nothing at all, are worth no backup.
    open();
    EXPECT_EQ(test::readFile(path + ".bak"), first);
    const auto settings = open();
    settings->setKeepBackup(false);
    settings->setGeneric("G", "K", 3);
    EXPECT_TRUE(settings->write());
    EXPECT_EQ(test::readFile(path + ".bak"), first);
}

TEST_F(SettingsPListTest, AnUnreadableFileIsKeptAsideOnce) {
    open()->setGeneric("G", "K", 1);
    open()->setGeneric("G", "K", 2);
    const std::string good = test::readFile(path + ".bak");
    writeList("<plist><dict><key>G</key><di");
    for (int i = 0; i < 2; ++i) {
        SettingsPList settings("Viewer", "Acme", true);
        if (i == 0) {
            EXPECT_THAT(settings.lastError(), HasSubstr("kept aside as \"" + path + ".corrupt-"));
        }
    }
    const std::vector<std::string> names = namesBeside();
    ASSERT_EQ(names.size(), 3U);
    EXPECT_EQ(names[1], std::string(kName) + ".bak");
    EXPECT_THAT(names[2], testing::MatchesRegex("com.Acme.Viewer.plist.corrupt-[0-9]+T[0-9]+Z"));
    EXPECT_EQ(test::readFile(folder + "/" + names[2]), "<plist><dict><key>G</key><di");
    EXPECT_EQ(test::readFile(path + ".bak"), good);
}

TEST_F(SettingsPListTest, WhatIsReadButNotUnderstoodIsKeptAsideToo) {
    const std::string list = listOf("<key>Bad</key><string>x</string>");
    writeList(list);
    open();
    ASSERT_EQ(namesBeside().size(), 2U);
    EXPECT_EQ(test::readFile(folder + "/" + namesBeside()[1]), list);
}

}  // namespace
}  // namespace tav::ula
