// SPDX-License-Identifier: MIT
// What other programs write is read, and what is written others read.
#include "tests/Mac/PListFixture.h"

#include <cstdio>
#include <limits>

namespace tav::ula {
namespace {

using testing::ElementsAre;
using Texts = std::vector<FastString>;

class SettingsPListReadersTest : public PListFixture {
protected:
    /// What a shell command prints, its complaints too.
    static std::string outputOf(const std::string& command) {
        std::string text;
        std::FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
        char piece[4096];
        while (const std::size_t count = std::fread(piece, 1, sizeof piece, pipe))
            text.append(piece, count);
        return text + (pclose(pipe) == 0 ? "" : "\nfailed");
    }
    std::string python(const std::string& program) const {
        test::writeFile(home / "program.py",
                        "import plistlib, sys\npath = '" + path + "'\n" + program);
        return outputOf("python3 '" + (home / "program.py") + "'");
    }
    static void fill(SettingsPList& settings) {
        settings.setGeneric("Window", "Width", -1280);
        settings.setGeneric("Window", "Full", true);
        settings.setGeneric("Window", "Small", false);
        settings.setGeneric("Window", "Gamma", 2.5);
        settings.setGeneric("Window", "Whole", 3.0);
        settings.setGeneric("Window", "Most", std::numeric_limits<double>::infinity());
        settings.setGeneric("Text", "\xC3\x89t\xC3\xA9 & <x>", "\xF0\x9F\x98\x80 \"q\"\r\n\t end");
        settings.setGeneric("Text", "Empty", "");
        settings.setGeneric("Text", "List", Texts{"a", "", "b & c"});
        settings.setGeneric("Text", "Nothing", Texts());
    }
    /// What `fill` stores, as Python spells it.
    static constexpr const char* kFilled =
        "filled = {'Window': {'Width': -1280, 'Full': True, 'Small': False, 'Gamma': 2.5,"
        " 'Whole': 3.0, 'Most': float('inf')},"
        " 'Text': {'\\u00c9t\\u00e9 & <x>': '\\U0001F600 \"q\"\\r\\n\\t end', 'Empty': '',"
        " 'List': ['a', '', 'b & c'], 'Nothing': []}}\n";
    void expectFilled() {
        SettingsPList expected("Other", "Acme", true);
        fill(expected);
        SettingsBase::GroupMap groups;
        std::string error;
        EXPECT_TRUE(SettingsPList::readFile(path, groups, error)) << error;
        EXPECT_EQ(groups, expected.getAllSettings());
    }
};

TEST_F(SettingsPListReadersTest, PythonReadsWhatIsWritten) {
    fill(*open());
    EXPECT_EQ(python(std::string(kFilled) +
                     "read = plistlib.load(open(path, 'rb'))\n"
                     "types = [[type(v) for v in g.values()] for g in (read['Window'],)]\n"
                     "print(read == filled, int in types[0], float in types[0])"),
              "True True True\n");
}

TEST_F(SettingsPListReadersTest, WhatPythonWritesIsRead) {
    for (const char* format : {"XML", "BINARY"}) {
        ASSERT_EQ(python(std::string(kFilled) +
                         "plistlib.dump(filled, open(path, 'wb'), fmt=plistlib.FMT_" + format +
                         ")"),
                  "");
        // As a text of a file it has no carriage return.
        if (std::string(format) == "BINARY")
            expectFilled();
        EXPECT_EQ(open()->getInt("Window", "Width", 0), -1280);
    }
}

TEST_F(SettingsPListReadersTest, PlistutilReadsWhatIsWritten) {
    fill(*open());
    const std::string copy = home / "copy";
    ASSERT_EQ(outputOf("plistutil -f xml -i '" + path + "' -o '" + copy + "'"), "");
    std::filesystem::rename(copy, path);
    expectFilled();
}

TEST_F(SettingsPListReadersTest, OfAListThatPlistutilMadeBinaryAllButShortRealsIsRead) {
    fill(*open());
    const std::string binary = home / "binary";
    ASSERT_EQ(outputOf("plistutil -f bin -i '" + path + "' -o '" + binary + "'"), "");
    ASSERT_TRUE(test::readFile(binary).starts_with("bplist00"));
    SettingsBase::GroupMap groups;
    std::string error;
    const test::LogCapture log;
    ASSERT_TRUE(SettingsPList::readFile(binary, groups, error)) << error;
    // It writes reals of four bytes where those will do, and the store has no floats.
    EXPECT_EQ(log.lines(), std::vector<std::string>(
                               3, test::assertionLine("src/Mac/SettingsPList", 125, "false")));
    EXPECT_EQ(groups.at("Window").size(), 3U);
    EXPECT_EQ(groups.at("Text").size(), 4U);
    EXPECT_EQ(groups.at("Window").at("Width").asInt(), -1280);
}

TEST_F(SettingsPListReadersTest, ABinaryListOfSharedObjectsIsRead) {
    ASSERT_EQ(python("t = 'x' * 300\n"
                     "d = {'a': t, 'b': t, 'c': [t, t], 'n': 2**62, 'm': -2**62}\n"
                     "plistlib.dump({'G': d, 'H': d}, open(path, 'wb'), fmt=plistlib.FMT_BINARY)"),
              "");
    const auto settings = open();
    EXPECT_THAT(settings->allGroups(), ElementsAre("G", "H"));
    EXPECT_EQ(settings->getString("H", "b", ""), FastString(std::string(300, 'x')));
    EXPECT_EQ(settings->getStringArray("G", "c", {}).size(), 2U);
}

TEST_F(SettingsPListReadersTest, OldStyleListsAreRead) {
    writeList("// a comment\n{ Window = { Width = 1280; Title = \"a \\\"b\\\" \\U00e9\\n\";\n"
              " Names = (x, \"y z\", ); }; /* and */ \"Empty group\" = {}; }\n");
    const auto settings = open();
    EXPECT_THAT(settings->allGroups(), ElementsAre("Empty group", "Window"));
    EXPECT_EQ(settings->getString("Window", "Width", ""), "1280");
    EXPECT_EQ(settings->getString("Window", "Title", ""), "a \"b\" \xC3\xA9\n");
    EXPECT_EQ(settings->getStringArray("Window", "Names", {}), (Texts{"x", "y z"}));
}

TEST_F(SettingsPListReadersTest, TheTypesThatGNUstepAddsToThemAreRead) {
    writeList("{ G = { I = <*I-5>; R = <*R1.5>; Y = <*BY>; N = <*BN>; S = plain; }; }");
    const auto settings = open();
    EXPECT_EQ(settings->getInt("G", "I", 0), -5);
    EXPECT_EQ(settings->getDouble("G", "R", 0), 1.5);
    EXPECT_EQ(settings->getBool("G", "Y", false), true);
    EXPECT_EQ(settings->getBool("G", "N", true), false);
    EXPECT_EQ(settings->getString("G", "S", ""), "plain");
}

TEST_F(SettingsPListReadersTest, OtherEncodingsAndSpellingsReadTheSame) {
    const std::string inside = "<key>G</key><dict><key>K</key><string>\xC3\xA9</string></dict>";
    const std::string list = "<plist version=\"1.0\"><dict>" + inside + "</dict></plist>";
    const auto expectValue = [&](const std::string& bytes) {
        writeList(bytes);
        SettingsBase::GroupMap groups;
        std::string error;
        ASSERT_TRUE(SettingsPList::readFile(path, groups, error)) << error << "\n" << bytes;
        EXPECT_EQ(groups.at("G").at("K").asString(), "\xC3\xA9");
    };
    expectValue("\xEF\xBB\xBF" + list);
    expectValue("<dict>" + inside + "</dict>");
    expectValue("<!-- x --><plist><dict>" + inside + "<!-- > --></dict></plist>\n<!-- y -->");
    expectValue("<?xml version='1.0' encoding='ISO-8859-1'?><plist><dict><key>G</key><dict>"
                "<key>K</key><string>\xE9</string></dict></dict></plist>");
    expectValue("<plist><dict><key >G</key ><dict><key>K</key><string><![CDATA[]]>&#xE9;<!--x-->"
                "</string></dict></dict></plist>");
    std::string little = "\xFF\xFE";
    for (const char byte : std::string("<dict><key>G</key><dict><key>K</key><string>\xE9</string>"
                                       "</dict></dict>"))
        little += {byte, '\0'};
    expectValue(little);
}

}  // namespace
}  // namespace tav::ula
