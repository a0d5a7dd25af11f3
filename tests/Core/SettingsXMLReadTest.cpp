// SPDX-License-Identifier: MIT
#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryFolder.h"
#include "ula/SettingsException.h"
#include "ula/SettingsXML.h"

#include <gmock/gmock.h>

namespace tav::ula {
namespace {

using Setting = SettingsBase::Setting;
using test::assertionLine;
using test::LogCapture;
using test::TemporaryFolder;
using testing::ElementsAre;
using testing::IsEmpty;

class SettingsXMLReadTest : public testing::Test {
protected:
    /// Reads the content of a root element.
    bool read(const std::string& groups) {
        return settings.read(FastString("<settings>" + groups + "</settings>"));
    }
    bool readKey(const std::string& type, const std::string& values) {
        return read("<group name='G'><key name='K' type='" + type + "'>" + values +
                    "</key></group>");
    }
    std::string messageOf(const std::string& groups) {
        try {
            read(groups);
        } catch (const SettingsException& exception) {
            return exception.what();
        }
        return "nothing was thrown";
    }

    SettingsXML settings{"App", "Company", false};
    LogCapture log;
};

TEST_F(SettingsXMLReadTest, EachTypeIsRead) {
    EXPECT_TRUE(readKey("int", "<value value='-12'/>"));
    EXPECT_EQ(settings.getInt("G", "K", 0), -12);
    EXPECT_TRUE(readKey("bool", "<value value='1'/>"));
    EXPECT_TRUE(settings.getBool("G", "K", false));
    EXPECT_TRUE(readKey("double", "<value value='2.5'/>"));
    EXPECT_EQ(settings.getDouble("G", "K", 0), 2.5);
    EXPECT_TRUE(readKey("string", "<value value='a &amp; b'/>"));
    EXPECT_EQ(settings.getString("G", "K", ""), "a & b");
    EXPECT_TRUE(readKey("string_array", "<value value='a'/><value value=''/>"));
    EXPECT_THAT(settings.getStringArray("G", "K", {}),
                ElementsAre(FastString("a"), FastString("")));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(SettingsXMLReadTest, ABoolIsTrueOnlyAboveZero) {
    readKey("bool", "<value value='2'/>");
    EXPECT_TRUE(settings.getBool("G", "K", false));
    for (const char* text : {"0", "-1", "-5"}) {
        readKey("bool", std::string("<value value='") + text + "'/>");
        EXPECT_FALSE(settings.getBool("G", "K", true)) << text;
    }
}

TEST_F(SettingsXMLReadTest, AnUnknownTypeIsAssertedAndThrownWithTheCorrectSpelling) {
    EXPECT_EQ(messageOf("<group name='A'><key name='K' type='int'><value value='1'/></key></group>"
                        "<group name='B'><key name='K' type='float'><value value='1'/></key>"
                        "</group>"),
              "unknown tag in the settings file");
    EXPECT_THAT(log.lines(), ElementsAre(assertionLine("src/Core/SettingsXML", 17, "0")));
    EXPECT_EQ(settings.getAllSettings().at("A").at("K"), Setting(1));
    EXPECT_FALSE(settings.getAllSettings().contains("B"));
}

TEST_F(SettingsXMLReadTest, ARootChildThatIsNoGroupThrowsWithTheMissingLetter) {
    EXPECT_EQ(messageOf("<groups name='A'/>"), "unknown tag in the setings file");
    EXPECT_THAT(settings.getAllSettings(), IsEmpty());
}

TEST_F(SettingsXMLReadTest, AGroupChildThatIsNoKeyThrowsWithTheMissingLetter) {
    EXPECT_EQ(messageOf("<group name='A'><keys name='K'/></group>"),
              "unknown tag in the setings file");
}

TEST_F(SettingsXMLReadTest, TheGroupOfTheFailureIsUnchanged) {
    settings.setGeneric("A", "old", 1);
    EXPECT_EQ(messageOf("<group name='A'><key name='K' type='int'><value value='1'/></key>"
                        "<odd/></group>"),
              "unknown tag in the setings file");
    EXPECT_THAT(settings.allValuesNamesOfGroup("A"), ElementsAre(FastString("old")));
}

TEST_F(SettingsXMLReadTest, TheExceptionsPlaceIsToldWithLineAndColumn) {
    EXPECT_THROW(settings.read(FastString("<settings>\n  <group name='A'>\n    <odd/>\n"
                                          "  </group>\n</settings>")),
                 SettingsException);
    EXPECT_EQ(settings.lastError(), "3:6: unknown tag in the setings file: expected \"key\"");
}

TEST_F(SettingsXMLReadTest, AValueElementOfAnotherNameIsStillRead) {
    EXPECT_TRUE(readKey("int", "<item value='7'/>"));
    EXPECT_EQ(settings.getInt("G", "K", 0), 7);
    EXPECT_TRUE(readKey("string_array", "<a value='1'/><b value='2'/>"));
    EXPECT_EQ(settings.getStringArray("G", "K", {}).size(), 2U);
}

TEST_F(SettingsXMLReadTest, OnlyTheFirstChildOfASingleValueCounts) {
    EXPECT_TRUE(readKey("int", "<value value='1'/><value value='2'/>"));
    EXPECT_EQ(settings.getInt("G", "K", 0), 1);
}

TEST_F(SettingsXMLReadTest, TheRootsNameIsNotChecked) {
    EXPECT_TRUE(settings.read(FastString("<other><group name='G'/></other>")));
    EXPECT_THAT(settings.allGroups(), ElementsAre(FastString("G")));
}

TEST_F(SettingsXMLReadTest, AGroupOfTheFileReplacesTheGroupWholeAndLeavesOthers) {
    for (const char* key : {"1", "2", "3"})
        settings.setGeneric("G", key, 0);
    settings.setGeneric("other", "K", 0);
    EXPECT_TRUE(readKey("int", "<value value='1'/>"));
    EXPECT_THAT(settings.allValuesNamesOfGroup("G"), ElementsAre(FastString("K")));
    EXPECT_TRUE(settings.containsValue("other", "K"));
}

TEST_F(SettingsXMLReadTest, AGroupWithoutKeysIsLeftEmpty) {
    settings.setGeneric("G", "K", 0);
    EXPECT_TRUE(read("<group name='G'/>"));
    EXPECT_THAT(settings.allGroups(), ElementsAre(FastString("G")));
    EXPECT_THAT(settings.allValuesNamesOfGroup("G"), IsEmpty());
}

TEST_F(SettingsXMLReadTest, LaterKeysAndGroupsOfTheSameNameReplaceEarlierOnes) {
    EXPECT_TRUE(read("<group name='G'><key name='K' type='int'><value value='1'/></key>"
                     "<key name='K' type='string'><value value='x'/></key></group>"
                     "<group name='H'><key name='gone' type='string_array'/></group>"
                     "<group name='H'><key name='K' type='string_array'/></group>"));
    EXPECT_EQ(settings.getString("G", "K", ""), "x");
    EXPECT_THAT(settings.allValuesNamesOfGroup("H"), ElementsAre(FastString("K")));
}

TEST_F(SettingsXMLReadTest, ReadingEmitsNoSignal) {
    int changes = 0;
    settings.changed().connect([&] { ++changes; });
    EXPECT_TRUE(readKey("int", "<value value='1'/>"));
    EXPECT_EQ(changes, 0);
}

TEST_F(SettingsXMLReadTest, AMissingNameGivesAnEntryUnderTheEmptyNameWithoutAssertion) {
    EXPECT_TRUE(read("<group name=''><key name='' type='int'><value value='1'/></key></group>"));
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_TRUE(settings.containsValue("", ""));
    EXPECT_TRUE(read("<group/>"));
    EXPECT_THAT(log.lines(),
                ElementsAre("2 src/Core/SettingsXML:71 the attribute \"name\" is missing in group "
                            "\"\", key \"\""));
}

TEST_F(SettingsXMLReadTest, AMissingValueReadsAsZeroWithALineThatNamesGroupAndKey) {
    const std::string line = "2 src/Core/SettingsXML:71 the attribute \"value\" is missing in "
                             "group \"G\", key \"K\"";
    for (const char* type : {"int", "bool", "double", "string"}) {
        for (const char* values : {"", "<value/>"}) {
            log.clear();
            EXPECT_TRUE(readKey(type, values));
            EXPECT_THAT(log.lines(), ElementsAre(line)) << type;
        }
    }
    EXPECT_EQ(settings.getAllSettings().at("G").at("K"), Setting(""));
}

TEST_F(SettingsXMLReadTest, WhatIsNoNumberReadsAsZeroWithALineThatNamesGroupAndKey) {
    for (const char* text : {"x", "12x", "1.5", "2147483648", "-2147483649", "", "0x10"}) {
        log.clear();
        EXPECT_TRUE(readKey("int", std::string("<value value='") + text + "'/>"));
        EXPECT_EQ(settings.getAllSettings().at("G").at("K"), Setting(0)) << text;
        EXPECT_THAT(log.lines(), ElementsAre("2 src/Core/SettingsXML:84 \"" + std::string(text) +
                                             "\" is not an int in group \"G\", key \"K\""));
    }
    log.clear();
    EXPECT_TRUE(readKey("double", "<value value='1e999'/>"));
    EXPECT_EQ(settings.getDouble("G", "K", 1), 0);
    EXPECT_THAT(log.lines(), ElementsAre("2 src/Core/SettingsXML:84 \"1e999\" is not a double in "
                                         "group \"G\", key \"K\""));
}

TEST_F(SettingsXMLReadTest, BlanksAndAPlusAroundANumberAreAccepted) {
    EXPECT_TRUE(readKey("int", "<value value=' +7 '/>"));
    EXPECT_EQ(settings.getInt("G", "K", 0), 7);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(SettingsXMLReadTest, AMissingTypeIsAnUnknownType) {
    EXPECT_EQ(messageOf("<group name='G'><key name='K'/></group>"),
              "unknown tag in the settings file");
}

TEST_F(SettingsXMLReadTest, APathIsNoXmlText) {
    const TemporaryFolder folder;
    test::writeFile(folder / "s.xml", "<settings/>");
    EXPECT_FALSE(settings.read(FastString(folder / "s.xml")));
    EXPECT_THAT(settings.lastError(), testing::HasSubstr("not well-formed"));
}

TEST_F(SettingsXMLReadTest, AnEmptyDocumentHandleGivesFalseAndChangesNothing) {
    settings.setGeneric("G", "K", 1);
    EXPECT_FALSE(settings.read(util::SharedPtr<xml::XmlDocumentRapid>()));
    EXPECT_EQ(settings.getInt("G", "K", 0), 1);
}

TEST_F(SettingsXMLReadTest, ADocumentMadeInMemoryIsRead) {
    auto document = xml::XmlDocumentRapid::create("settings");
    auto group = document->rootNode().appendChild("group");
    group.appendAttribute("name", "G");
    auto key = group.appendChild("key");
    key.appendAttribute("name", "K");
    key.appendAttribute("type", "double");
    key.appendChild("value").appendAttribute("value", 0.1);
    EXPECT_TRUE(settings.read(document));
    EXPECT_EQ(settings.getDouble("G", "K", 0), 0.1);
}

TEST_F(SettingsXMLReadTest, TypeTextsAreExactAndCaseSensitive) {
    EXPECT_EQ(SettingsXML::toType("int"), SETTINGSTYPE_INT);
    EXPECT_EQ(SettingsXML::toType("bool"), SETTINGSTYPE_BOOL);
    EXPECT_EQ(SettingsXML::toType("double"), SETTINGSTYPE_DOUBLE);
    EXPECT_EQ(SettingsXML::toType("string"), SETTINGSTYPE_STRING);
    EXPECT_EQ(SettingsXML::toType("string_array"), SETTINGSTYPE_STRING_ARRAY);
    EXPECT_THAT(log.lines(), IsEmpty());
    for (const char* text : {"Int", "", " int", "<invalid>"})
        EXPECT_EQ(SettingsXML::toType(text), SETTINGSTYPE_INVALID) << text;
    EXPECT_THAT(log.lines(), testing::Each(assertionLine("src/Core/SettingsXML", 17, "0")));
    EXPECT_EQ(log.lines().size(), 4U);
}

TEST_F(SettingsXMLReadTest, TypesHaveTheirTexts) {
    EXPECT_EQ(SettingsXML::toString(SETTINGSTYPE_INT), "int");
    EXPECT_EQ(SettingsXML::toString(SETTINGSTYPE_STRING_ARRAY), "string_array");
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_EQ(SettingsXML::toString(SETTINGSTYPE_INVALID), "<invalid>");
    EXPECT_EQ(SettingsXML::toString(static_cast<SettingsType>(99)), "<invalid>");
    EXPECT_THAT(log.lines(), ElementsAre(assertionLine("src/Core/SettingsXML", 27, "0"),
                                         assertionLine("src/Core/SettingsXML", 27, "0")));
}

TEST(SettingsXMLFileReadTest, AMissingFileGivesFalseSilentlyAndSaysWhy) {
    const TemporaryFolder folder;
    LogCapture log;
    SettingsXML settings("App", "Company", FastString(folder / "s.xml"), false);
    EXPECT_FALSE(settings.read());
    EXPECT_THAT(settings.lastError(), testing::StartsWith((folder / "s.xml") + ": "));
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_THAT(folder.names(), IsEmpty());
}

TEST(SettingsXMLFileReadTest, TheConstructorReadsTheFileAtOnce) {
    const TemporaryFolder folder;
    test::writeFile(folder / "s.xml", "<settings><group name='G'><key name='K' type='int'>"
                                      "<value value='5'/></key></group></settings>");
    SettingsXML settings("App", "Company", FastString(folder / "s.xml"), false);
    EXPECT_EQ(settings.getInt("G", "K", 0), 5);
}

TEST(SettingsXMLFileReadTest, AnExceptionOfTheReadLeavesTheConstructor) {
    const TemporaryFolder folder;
    test::writeFile(folder / "s.xml", "<settings><odd/></settings>");
    EXPECT_THROW(SettingsXML("App", "Company", FastString(folder / "s.xml"), false),
                 SettingsException);
}

TEST(SettingsXMLFileReadTest, ABrokenFileLeavesTheStoreUntouchedAndNamesPathLineAndColumn) {
    const TemporaryFolder folder;
    SettingsXML settings("App", "Company", FastString(folder / "s.xml"), false);
    settings.setGeneric("G", "K", 1);
    test::writeFile(folder / "s.xml", "<settings>\n<group name='G'>\n</settings>\n");
    EXPECT_FALSE(settings.read());
    EXPECT_EQ(settings.getInt("G", "K", 0), 1);
    EXPECT_THAT(settings.lastError(), testing::StartsWith((folder / "s.xml") + ":3:"));
    test::writeFile(folder / "s.xml", "<settings/>");
    EXPECT_TRUE(settings.read());
    EXPECT_EQ(settings.lastError(), "");
}

}  // namespace
}  // namespace tav::ula
