// SPDX-License-Identifier: MIT
#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryFolder.h"
#include "ula/SettingsException.h"
#include "ula/SettingsXML.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <sys/stat.h>

namespace tav::ula {
namespace {

using test::TemporaryFolder;
using test::writeFile;
using testing::HasSubstr;

class SettingsXMLHostileTest : public testing::Test {
protected:
    bool readBytes(std::string_view bytes) {
        std::filesystem::remove(path);
        SettingsXML settings("App", "Company", FastString(path), false);
        writeFile(path, bytes);
        return readWith(settings);
    }
    /// Reads what is at the path, one group at most; a key in memory must survive a failure.
    bool readWith(SettingsXML& settings) {
        settings.setGeneric("kept", "K", 1);
        const bool result = settings.read();
        error = settings.lastError();
        EXPECT_TRUE(settings.containsValue("kept", "K"));
        EXPECT_EQ(settings.allGroups().size(), result ? 2U : 1U);
        return result;
    }

    TemporaryFolder folder;
    std::string path = folder / "s.xml";
    std::string error;
};

TEST_F(SettingsXMLHostileTest, AFolderIsRefusedAndNamed) {
    SettingsXML settings("App", "Company", FastString(path), false);
    std::filesystem::create_directory(path);
    EXPECT_FALSE(readWith(settings));
    EXPECT_EQ(error, path + ": is a folder");
}

TEST_F(SettingsXMLHostileTest, APipeIsRefusedWithoutWaitingForItsWriter) {
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    SettingsXML settings("App", "Company", FastString(path), false);
    EXPECT_FALSE(readWith(settings));
    EXPECT_EQ(error, path + ": is not a regular file");
}

TEST_F(SettingsXMLHostileTest, AnEmptyFileIsRefused) {
    EXPECT_FALSE(readBytes(""));
    EXPECT_THAT(error, HasSubstr("no element"));
}

TEST_F(SettingsXMLHostileTest, AGigabyteIsRefused) {
    writeFile(path, "");
    std::filesystem::resize_file(path, std::uintmax_t{1} << 30);
    xml::XmlError reason;
    EXPECT_FALSE(xml::XmlDocumentRapid::load(FastString(path), true, &reason));
    EXPECT_EQ(reason.describe(), path + ": larger than 256 MiB, the most that is read");
}

TEST_F(SettingsXMLHostileTest, BinaryIsRefused) {
    std::string bytes;
    for (int i = 0; i < 4096; ++i)
        bytes += static_cast<char>(i * 37 + i / 256);
    EXPECT_FALSE(readBytes(bytes));
    EXPECT_THAT(error, HasSubstr(path + ":1:"));
}

TEST_F(SettingsXMLHostileTest, AZeroByteIsRefusedWithItsPlace) {
    EXPECT_FALSE(readBytes(std::string_view("<settings>\n \0</settings>", 24)));
    EXPECT_THAT(error, HasSubstr(path + ":2:2: not well-formed: a byte that is no character"));
}

TEST_F(SettingsXMLHostileTest, BadUtf8IsRefusedWithItsPlace) {
    EXPECT_FALSE(readBytes("<settings><group name=\"\xFF\"/></settings>"));
    EXPECT_THAT(error, HasSubstr(path + ":1:24: "));
}

TEST_F(SettingsXMLHostileTest, AnAttributeGivenTwiceIsRefused) {
    EXPECT_FALSE(readBytes("<settings><group name=\"a\" name=\"b\"/></settings>"));
    EXPECT_THAT(error, HasSubstr("an attribute is given twice"));
}

TEST_F(SettingsXMLHostileTest, AMillionLevelsAreReadWithoutRecursion) {
    constexpr int kLevels = 1'000'000;
    std::string text =
        "<settings><group name=\"G\"><key name=\"K\" type=\"int\"><value value=\"1\">";
    for (int i = 0; i < kLevels; ++i)
        text += "<a>";
    for (int i = 0; i < kLevels; ++i)
        text += "</a>";
    text += "</value></key></group></settings>";
    EXPECT_TRUE(readBytes(text));
    SettingsXML reader("App", "Company", FastString(path), false);
    EXPECT_EQ(reader.getInt("G", "K", 0), 1);
}

TEST_F(SettingsXMLHostileTest, EntitiesOfTheDocumentAreNeverExpanded) {
    std::string bomb = "<!DOCTYPE settings [<!ENTITY a0 \"ha\">";
    for (int i = 1; i < 30; ++i)
        bomb += "<!ENTITY a" + std::to_string(i) + " \"&a" + std::to_string(i - 1) + ";&a" +
                std::to_string(i - 1) + ";\">";
    EXPECT_FALSE(readBytes(bomb + "]><settings><group name=\"&a29;\"/></settings>"));
    EXPECT_THAT(error, HasSubstr("without a reference that XML defines"));
    EXPECT_TRUE(readBytes(bomb + "]><settings><group name=\"G\"/></settings>"));
}

TEST_F(SettingsXMLHostileTest, NothingOutsideTheFileIsRead) {
    writeFile(folder / "secret", "secret");
    EXPECT_FALSE(readBytes("<!DOCTYPE settings [<!ENTITY x SYSTEM \"" + (folder / "secret") +
                           "\">]><settings><group name=\"&x;\"/></settings>"));
    EXPECT_THAT(error, HasSubstr("without a reference that XML defines"));
}

TEST_F(SettingsXMLHostileTest, OtherEncodingsReadAsTheSameText) {
    const auto expectGroup = [&](std::string_view bytes) {
        ASSERT_TRUE(readBytes(bytes)) << error;
        SettingsXML reader("App", "Company", FastString(path), false);
        EXPECT_EQ(reader.allGroups().at(0), "\xC3\xA9");
    };
    const std::string utf8 = "<settings><group name=\"\xC3\xA9\"/></settings>";
    expectGroup(utf8);
    expectGroup("\xEF\xBB\xBF" + utf8);
    expectGroup("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>"
                "<settings><group name=\"\xE9\"/></settings>");
    std::string little, big;
    for (const char byte : std::string("<settings><group name=\"\xE9\"/></settings>")) {
        little += {byte, '\0'};
        big += {'\0', byte};
    }
    expectGroup(little);
    expectGroup(big);
    expectGroup("\xFF\xFE" + little);
    expectGroup("\xFE\xFF" + big);
}

TEST_F(SettingsXMLHostileTest, AnEncodingThatNobodyKnowsIsRefused) {
    EXPECT_FALSE(readBytes("<?xml version=\"1.0\" encoding=\"x-odd\"?><settings/>"));
    EXPECT_THAT(error, HasSubstr("in the unknown encoding \"X-ODD\""));
    EXPECT_FALSE(readBytes(std::string_view("\xFF\xFE<\0s\0x", 7)));
    EXPECT_THAT(error, HasSubstr("not in the encoding \"UTF-16LE\" that it claims"));
}

TEST_F(SettingsXMLHostileTest, EveryTruncationOfAFileHasADefinedResult) {
    SettingsXML original("App", "Company", FastString(path), false);
    for (int i = 0; original.getAllSettings().empty() || std::filesystem::file_size(path) < 4096;
         ++i) {
        original.setGeneric("Group", FastString("Key \xC3\xA9" + std::to_string(i)), "a & b");
        ASSERT_TRUE(original.write());
    }
    const std::string whole = test::readFile(path);
    const std::size_t end = whole.rfind('>') + 1;
    for (std::size_t length = 0; length < whole.size(); ++length) {
        SettingsXML reader("App", "Company", false);
        reader.setGeneric("kept", "K", 1);
        const bool result = reader.read(FastString(whole.data(), length));
        EXPECT_EQ(result, length >= end) << length;
        EXPECT_EQ(reader.allGroups().size(), result ? 2U : 1U);
    }
}

}  // namespace
}  // namespace tav::ula
