// SPDX-License-Identifier: MIT
#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryFolder.h"
#include "ula/SettingsXML.h"

#include <bit>
#include <clocale>
#include <filesystem>
#include <gmock/gmock.h>
#include <limits>
#include <random>

namespace tav::ula {
namespace {

using Setting = SettingsBase::Setting;
using test::assertionLine;
using test::LogCapture;
using test::readFile;
using test::TemporaryFolder;
using testing::ElementsAre;
using testing::IsEmpty;

class SettingsXMLWriteTest : public testing::Test {
protected:
    FastString path() const { return FastString(folder / "s.xml"); }

    TemporaryFolder folder;
    SettingsXML settings{"App", "Company", path(), false};
};

TEST_F(SettingsXMLWriteTest, TheFileHasTheseBytes) {
    settings.setGeneric("Window", "Width", Setting(800));
    settings.setGeneric("Window", "Open", Setting(true));
    settings.setGeneric("Window", "Scale", Setting(0.1));
    settings.setGeneric("\xC3\x89t\xC3\xA9", "Title", Setting("a<b & \"c\"\n\t\r>"));
    settings.setGeneric("Recent", "Folders", Setting(std::vector<FastString>{"/a", ""}));
    settings.setGeneric("Recent", "None", Setting(std::vector<FastString>{}));
    ASSERT_TRUE(settings.write());
    EXPECT_EQ(readFile(folder / "s.xml"),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<settings>\n"
              "\t<group name=\"\xC3\x89t\xC3\xA9\">\n"
              "\t\t<key name=\"Title\" type=\"string\">\n"
              "\t\t\t<value value=\"a&lt;b &amp; &quot;c&quot;&#10;&#9;&#13;&gt;\"/>\n"
              "\t\t</key>\n"
              "\t</group>\n"
              "\t<group name=\"Recent\">\n"
              "\t\t<key name=\"Folders\" type=\"string_array\">\n"
              "\t\t\t<value value=\"/a\"/>\n"
              "\t\t\t<value value=\"\"/>\n"
              "\t\t</key>\n"
              "\t\t<key name=\"None\" type=\"string_array\"/>\n"
              "\t</group>\n"
              "\t<group name=\"Window\">\n"
              "\t\t<key name=\"Open\" type=\"bool\">\n"
              "\t\t\t<value value=\"1\"/>\n"
              "\t\t</key>\n"
              "\t\t<key name=\"Scale\" type=\"double\">\n"
              "\t\t\t<value value=\"0.1\"/>\n"
              "\t\t</key>\n"
              "\t\t<key name=\"Width\" type=\"int\">\n"
              "\t\t\t<value value=\"800\"/>\n"
              "\t\t</key>\n"
              "\t</group>\n"
              "</settings>\n");
}

TEST_F(SettingsXMLWriteTest, TheBytesAreThoseOfADocumentSavedFromATree) {
    settings.setGeneric("G", "K", Setting(std::vector<FastString>{"1", "2"}));
    settings.setGeneric("G", "L", Setting(std::vector<FastString>{}));
    ASSERT_TRUE(settings.write());
    const auto document = xml::XmlDocumentRapid::load(path(), true);
    document->save(FastString(folder / "tree.xml"), true, true);
    EXPECT_EQ(readFile(folder / "tree.xml"), readFile(folder / "s.xml"));

    ASSERT_TRUE(settings.read(FastString("<settings><group name='G'/></settings>")));
    ASSERT_TRUE(settings.write());
    xml::XmlDocumentRapid::load(path(), true)->save(FastString(folder / "tree.xml"), true, true);
    EXPECT_EQ(readFile(folder / "tree.xml"), readFile(folder / "s.xml"));
}

TEST_F(SettingsXMLWriteTest, AnEmptyStoreIsAnEmptyRoot) {
    ASSERT_TRUE(settings.write());
    EXPECT_EQ(readFile(folder / "s.xml"),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<settings/>\n");
    EXPECT_TRUE(settings.read());
}

TEST_F(SettingsXMLWriteTest, WhatIsWrittenReadsBackEqual) {
    settings.setGeneric("G", "int", Setting(std::numeric_limits<int>::min()));
    settings.setGeneric("G", "bool", Setting(false));
    settings.setGeneric("G", "empty", Setting(std::vector<FastString>{}));
    settings.setGeneric("G", "text", Setting(""));
    settings.setGeneric("", "", Setting("empty names"));
    ASSERT_TRUE(settings.write());
    const SettingsXML second("App", "Company", path(), false);
    EXPECT_TRUE(second.getAllSettings() == settings.getAllSettings());
}

TEST_F(SettingsXMLWriteTest, EveryCharacterOfXmlSurvives) {
    std::string all;
    for (char32_t code = 1; code <= 0x10FFFF; code += code < 0x3000 ? 1 : 97) {
        const bool isControl = code < 0x20 && code != 9 && code != 10 && code != 13;
        if (isControl || (code >= 0xD800 && code <= 0xDFFF) || code == 0xFFFE || code == 0xFFFF)
            continue;
        const auto put = [&](char32_t byte) { all += static_cast<char>(byte); };
        if (code < 0x80) {
            put(code);
        } else if (code < 0x800) {
            put(0xC0 | code >> 6), put(0x80 | (code & 0x3F));
        } else if (code < 0x10000) {
            put(0xE0 | code >> 12), put(0x80 | (code >> 6 & 0x3F)), put(0x80 | (code & 0x3F));
        } else {
            put(0xF0 | code >> 18), put(0x80 | (code >> 12 & 0x3F));
            put(0x80 | (code >> 6 & 0x3F)), put(0x80 | (code & 0x3F));
        }
    }
    settings.setGeneric(FastString(all), FastString(all), Setting(FastString(all)));
    ASSERT_TRUE(settings.write()) << settings.lastError();
    const SettingsXML second("App", "Company", path(), false);
    EXPECT_TRUE(second.getAllSettings() == settings.getAllSettings());
}

TEST_F(SettingsXMLWriteTest, DoublesKeepTheirBits) {
    std::mt19937_64 random(1);
    std::vector<double> numbers = {0.0,
                                   -0.0,
                                   0.1,
                                   1e300,
                                   5e-324,
                                   std::numeric_limits<double>::infinity(),
                                   -std::numeric_limits<double>::infinity(),
                                   std::numeric_limits<double>::quiet_NaN(),
                                   std::bit_cast<double>(0xFFF8000000000000),
                                   std::bit_cast<double>(0x7FF0000000000001)};
    for (int i = 0; i < 5000; ++i)
        numbers.push_back(std::bit_cast<double>(random()));
    for (std::size_t i = 0; i < numbers.size(); ++i)
        settings.setGeneric("G", FastString(std::to_string(i)), Setting(numbers[i]));
    ASSERT_TRUE(settings.write());
    const SettingsXML second("App", "Company", path(), false);
    EXPECT_TRUE(second.getAllSettings() == settings.getAllSettings());
}

TEST_F(SettingsXMLWriteTest, WhatXmlCannotCarryIsRefusedAndTheOldFileStays) {
    settings.setGeneric("G", "K", Setting("old"));
    ASSERT_TRUE(settings.write());
    const std::string old = readFile(folder / "s.xml");
    for (const char* bad : {"\x01", "a\x1F", "\xFF", "\xC3", "\xED\xA0\x80", "\xEF\xBF\xBE",
                            "\xC0\x80", "\xF4\x90\x80\x80"}) {
        LogCapture log;
        settings.setGeneric("G", "K", Setting(bad));
        EXPECT_FALSE(settings.write());
        ASSERT_EQ(log.lines().size(), 1U);
        EXPECT_THAT(log.lines()[0],
                    testing::StartsWith("4 src/Core/SettingsXML:165 group \"G\", key \"K\": XML "
                                        "cannot carry byte 0x"));
        EXPECT_EQ("4 src/Core/SettingsXML:165 " + settings.lastError(), log.lines()[0]);
        EXPECT_EQ(readFile(folder / "s.xml"), old);
        EXPECT_THAT(folder.names(), ElementsAre("s.xml"));
    }
    settings.setGeneric("G", "K", Setting(FastString("a\0b", 3)));
    LogCapture log;
    EXPECT_FALSE(settings.write());
    EXPECT_THAT(log.lines(),
                ElementsAre("4 src/Core/SettingsXML:165 group \"G\", key \"K\": XML cannot carry "
                            "byte 0x00 at position 1 of attribute \"value\""));
}

TEST_F(SettingsXMLWriteTest, AGroupWhoseNameXMLCannotCarryIsNamed) {
    settings.setGeneric("G\x02", "K", 1);
    const LogCapture log;
    EXPECT_FALSE(settings.write());
    EXPECT_EQ(settings.lastError(),
              "group \"G\x02\": XML cannot carry byte 0x02 at position 1 of attribute \"name\"");
}

TEST_F(SettingsXMLWriteTest, ARecordOfNoTypeIsAssertedAndItsKeyHasNoValue) {
    settings.setGeneric("G", "K", Setting());
    LogCapture log;
    EXPECT_TRUE(settings.write());
    EXPECT_THAT(log.lines(), ElementsAre(assertionLine("src/Core/SettingsXML", 27, "0"),
                                         assertionLine("src/Core/SettingsXML", 158, "0")));
    EXPECT_THAT(readFile(folder / "s.xml"),
                testing::HasSubstr("<key name=\"K\" type=\"&lt;invalid&gt;\"/>"));
}

TEST_F(SettingsXMLWriteTest, WithoutAPathWritingFailsWithOneLine) {
    SettingsXML homeless("App", "Company", false);
    LogCapture log;
    EXPECT_FALSE(homeless.write());
    EXPECT_THAT(log.lines(), ElementsAre("4 src/Core/SettingsXML:165 cannot write \"\": No such "
                                         "file or directory"));
    EXPECT_FALSE(homeless.read());
}

TEST_F(SettingsXMLWriteTest, AMissingFolderFailsWithOneLineAndSaysWhy) {
    const std::string path = folder / "none/s.xml";
    SettingsXML lost("App", "Company", FastString(path), false);
    LogCapture log;
    EXPECT_FALSE(lost.write());
    EXPECT_THAT(log.lines(), ElementsAre("4 src/Core/SettingsXML:165 cannot write \"" + path +
                                         "\": No such file or directory"));
    EXPECT_EQ(lost.lastError(), "cannot write \"" + path + "\": No such file or directory");
}

TEST_F(SettingsXMLWriteTest, TheDestructorWritesOnlyWhenToldTo) {
    { SettingsXML("App", "Company", path(), false).setGeneric("G", "K", 1); }
    EXPECT_THAT(folder.names(), IsEmpty());
    { SettingsXML("App", "Company", path(), true).setGeneric("G", "K", 1); }
    SettingsXML second("App", "Company", path(), false);
    EXPECT_EQ(second.getInt("G", "K", 0), 1);
}

TEST_F(SettingsXMLWriteTest, ABackupOfTheFileThatIsReplacedIsKeptWhenAskedFor) {
    settings.setGeneric("G", "K", 1);
    ASSERT_TRUE(settings.write());
    const std::string first = readFile(folder / "s.xml");
    settings.setKeepBackup(true);
    settings.setGeneric("G", "K", 2);
    ASSERT_TRUE(settings.write());
    EXPECT_EQ(readFile(folder / "s.xml.bak"), first);
    EXPECT_THAT(folder.names(), ElementsAre("s.xml", "s.xml.bak"));
    const std::string second = readFile(folder / "s.xml");
    settings.setGeneric("G", "K", 3);
    ASSERT_TRUE(settings.write());
    EXPECT_EQ(readFile(folder / "s.xml.bak"), second);
    EXPECT_THAT(folder.names(), ElementsAre("s.xml", "s.xml.bak"));
}

TEST_F(SettingsXMLWriteTest, ABrokenFileDoesNotReplaceAGoodBackup) {
    settings.setGeneric("G", "K", 1);
    ASSERT_TRUE(settings.write());
    settings.setKeepBackup(true);
    ASSERT_TRUE(settings.write());
    const std::string good = readFile(folder / "s.xml.bak");
    test::writeFile(folder / "s.xml", "broken by another program");
    ASSERT_TRUE(settings.write());
    EXPECT_EQ(readFile(folder / "s.xml.bak"), good);
}

TEST_F(SettingsXMLWriteTest, ASymbolicLinkStaysAndItsTargetIsReplaced) {
    test::writeFile(folder / "real.xml", "<settings/>");
    std::filesystem::create_symlink("real.xml", folder / "s.xml");
    settings.setGeneric("G", "K", 1);
    ASSERT_TRUE(settings.write());
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "s.xml"));
    EXPECT_THAT(readFile(folder / "real.xml"), testing::HasSubstr("name=\"K\""));
}

TEST_F(SettingsXMLWriteTest, ReadBackSettingsShareNothingWithTheFileOnDisk) {
    settings.setGeneric("G", "K", Setting("text"));
    ASSERT_TRUE(settings.write());
    SettingsXML second("App", "Company", path(), false);
    std::filesystem::remove(folder / "s.xml");
    EXPECT_EQ(second.getString("G", "K", ""), "text");
}

}  // namespace
}  // namespace tav::ula
