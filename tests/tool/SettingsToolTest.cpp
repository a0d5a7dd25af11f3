// SPDX-License-Identifier: MIT
#include "tests/tool/ToolProcess.h"

namespace tav::test {

namespace {

class SettingsTool : public ToolTest {
protected:
    /// Stores a value and expects silence.
    void set(std::vector<std::string> words) {
        words.insert(words.begin(), {"a.xml", "set"});
        expectResult(settings(words), 0, "", "");
    }
    std::string typeAndValue(const std::string& group, const std::string& key) {
        const std::string json = settings({"a.xml", "get", group, key, "--json"}).output;
        const std::string begin = "{\n  \"version\": 1,\n  \"setting\": ";
        EXPECT_EQ(json.substr(0, begin.size()), begin);
        return json.substr(begin.size(), json.rfind('}') - begin.size());
    }
};

TEST_F(SettingsTool, TellsItsVersion) {
    expectResult(run({"--version"}), 0, "ula 0.1.0\n", "");
}

TEST_F(SettingsTool, HelpTeachesByExampleAndNamesTheExitCodes) {
    const ToolResult help = run({"settings", "--help"});
    EXPECT_EQ(help.code, 0);
    EXPECT_EQ(help.errors, "");
    for (const char* text : {"ula settings photo.xml set Window Width 1280", "Exit codes:",
                             "3  a file cannot be read", "4  a file cannot be written"})
        EXPECT_NE(help.output.find(text), std::string::npos) << text;
}

TEST_F(SettingsTool, SetMakesTheFileAndGuessesTheType) {
    set({"Window", "Width", "1280"});
    set({"Window", "Gamma", "2.5"});
    set({"Window", "Small", "-1e-3"});
    set({"Window", "Full", "true"});
    set({"Window", "Title", "photos"});
    set({"Window", "Code", "007"});
    set({"Window", "Folders", "a", "b"});
    EXPECT_EQ(typeAndValue("Window", "Width"), "{\"type\": \"int\", \"value\": 1280}\n");
    EXPECT_EQ(typeAndValue("Window", "Gamma"), "{\"type\": \"double\", \"value\": 2.5}\n");
    EXPECT_EQ(typeAndValue("Window", "Small"), "{\"type\": \"double\", \"value\": -0.001}\n");
    EXPECT_EQ(typeAndValue("Window", "Full"), "{\"type\": \"bool\", \"value\": true}\n");
    EXPECT_EQ(typeAndValue("Window", "Title"), "{\"type\": \"string\", \"value\": \"photos\"}\n");
    EXPECT_EQ(typeAndValue("Window", "Code"), "{\"type\": \"string\", \"value\": \"007\"}\n");
    EXPECT_EQ(typeAndValue("Window", "Folders"),
              "{\"type\": \"string_array\", \"value\": [\"a\", \"b\"]}\n");
}

TEST_F(SettingsTool, SetKeepsTheTypeOfAnExistingKey) {
    set({"G", "text", "hello"});
    set({"G", "text", "12"});
    EXPECT_EQ(typeAndValue("G", "text"), "{\"type\": \"string\", \"value\": \"12\"}\n");
    set({"G", "list", "a", "b"});
    set({"G", "list", "c"});
    EXPECT_EQ(typeAndValue("G", "list"), "{\"type\": \"string_array\", \"value\": [\"c\"]}\n");
    set({"G", "text", "12", "--type", "int"});
    EXPECT_EQ(typeAndValue("G", "text"), "{\"type\": \"int\", \"value\": 12}\n");
}

TEST_F(SettingsTool, SetTakesEveryTypeByName) {
    set({"G", "k", "--type", "string_array"});
    EXPECT_EQ(typeAndValue("G", "k"), "{\"type\": \"string_array\", \"value\": []}\n");
    set({"G", "k", "off", "--type", "bool"});
    EXPECT_EQ(typeAndValue("G", "k"), "{\"type\": \"bool\", \"value\": false}\n");
    set({"G", "k", "nan", "--type", "double"});
    EXPECT_EQ(typeAndValue("G", "k"), "{\"type\": \"double\", \"value\": \"nan\"}\n");
    set({"G", "k", "7", "--type", "string"});
    EXPECT_EQ(typeAndValue("G", "k"), "{\"type\": \"string\", \"value\": \"7\"}\n");
}

TEST_F(SettingsTool, SetTakesWordsThatMeanSomethingToAnArgumentParser) {
    set({"G", "k", "list", "get", "[a,b]", "{}", ""});
    expectResult(settings({"a.xml", "get", "G", "k"}), 0, "list\nget\n[a,b]\n{}\n\n", "");
    set({"G", "one", "{}"});
    expectResult(settings({"a.xml", "get", "G", "one"}), 0, "{}\n", "");
    set({"G", "minus", "--", "--type"});
    expectResult(settings({"a.xml", "get", "G", "minus"}), 0, "--type\n", "");
    set({"[G]", "{k}", "-5"});
    expectResult(settings({"a.xml", "get", "[G]", "{k}"}), 0, "-5\n", "");
}

TEST_F(SettingsTool, SetTakesJson) {
    set({"G", "bare", "--json", "[\"a\", \"b, c\"]"});
    EXPECT_EQ(typeAndValue("G", "bare"),
              "{\"type\": \"string_array\", \"value\": [\"a\", \"b, c\"]}\n");
    set({"G", "typed", "--json", "{\"type\": \"double\", \"value\": 2}"});
    EXPECT_EQ(typeAndValue("G", "typed"), "{\"type\": \"double\", \"value\": 2.0}\n");
}

TEST_F(SettingsTool, GetPrintsTheBareValue) {
    set({"Größe", "写真", "Été"});
    expectResult(settings({"a.xml", "get", "Größe", "写真"}), 0, "Été\n", "");
    set({"G", "k", "x", "--type", "string_array"});
    expectResult(settings({"a.xml", "get", "G", "k"}), 0, "x\n", "");
}

TEST_F(SettingsTool, GetOfAMissingKeyIsExitCodeOne) {
    set({"G", "k", "1"});
    expectResult(settings({"a.xml", "get", "G", "nope"}), 1, "",
                 "ula: a.xml: there is no key \"nope\" in group \"G\"\n"
                 "     'ula settings FILE list' shows what there is; --default VALUE gives a "
                 "value instead\n");
    expectResult(settings({"a.xml", "get", "G", "nope", "--default", "9"}), 0, "9\n", "");
    EXPECT_EQ(settings({"a.xml", "get", "G", "nope"}).code, 1) << "the default was stored";
}

TEST_F(SettingsTool, ListIsAnAlignedTable) {
    set({"Window", "Title", "My \"photos\"\n"});
    set({"Window", "W", "1280"});
    set({"Größe", "写真", "2.5"});
    set({"Größe", "ab", "true"});
    set({"Größe", "Folders", "a", "b"});
    set({"Größe", "none", "--type", "string_array"});
    const std::string table = "Größe\n"
                              "  写真     double        2.5\n"
                              "  Folders  string_array  \"a\"\n"
                              "                         \"b\"\n"
                              "  ab       bool          true\n"
                              "  none     string_array  (no entries)\n"
                              "\n"
                              "Window\n"
                              "  Title    string        \"My \\\"photos\\\"\\n\"\n"
                              "  W        int           1280\n";
    expectResult(settings({"a.xml", "list"}), 0, table, "");
    expectResult(settings({"a.xml"}), 0, table, "");
    expectResult(settings({"a.xml", "list", "Window"}), 0,
                 "Window\n"
                 "  Title  string  \"My \\\"photos\\\"\\n\"\n"
                 "  W      int     1280\n",
                 "");
    EXPECT_EQ(settings({"a.xml", "list", "Nope"}).code, 1);
}

TEST_F(SettingsTool, ListCannotBeUsedToSteerATerminal) {
    // C1 controls and reordering marks are characters that XML carries.
    set({"G", "k",
         "a\xC2\x9B"
         "31m\xE2\x80\xAE"});
    expectResult(settings({"a.xml", "list"}), 0, "G\n  k  string  \"a\\u009b31m\\u202e\"\n", "");
}

TEST_F(SettingsTool, UnsetRemovesAKeyAndAGroupWithItsLastKey) {
    set({"G", "a", "1"});
    set({"G", "b", "2"});
    set({"H", "c", "3"});
    expectResult(settings({"a.xml", "unset", "G", "a"}), 0, "", "");
    expectResult(settings({"a.xml", "list"}), 0, "G\n  b  int  2\n\nH\n  c  int  3\n", "");
    expectResult(settings({"a.xml", "unset", "G", "b"}), 0, "", "");
    expectResult(settings({"a.xml", "list"}), 0, "H\n  c  int  3\n", "");
    expectResult(settings({"a.xml", "unset", "H"}), 0, "", "");
    expectResult(settings({"a.xml", "list"}), 0, "", "");
    expectResult(settings({"a.xml", "unset", "H", "c"}), 1, "",
                 "ula: a.xml: there is no key \"c\" in group \"H\"\n"
                 "     'ula settings FILE list' shows what there is\n");
}

TEST_F(SettingsTool, DiffIsExitCodeOneWhenAnythingDiffers) {
    set({"G", "same", "1"});
    set({"G", "value", "2"});
    set({"Gone", "x", "y"});
    write("b.xml", read("a.xml"));
    expectResult(settings({"a.xml", "diff", "b.xml"}), 0, "", "");
    set({"G", "value", "3"});
    set({"G", "new", "true"});
    expectResult(settings({"a.xml", "unset", "Gone"}), 0, "", "");
    expectResult(settings({"b.xml", "diff", "a.xml"}), 1,
                 "--- b.xml\n"
                 "+++ a.xml\n"
                 "G\n"
                 "  + new    bool    true\n"
                 "  - value  int     2\n"
                 "  + value  int     3\n"
                 "\n"
                 "Gone\n"
                 "  - x      string  \"y\"\n",
                 "");
    expectResult(settings({"b.xml", "diff", "a.xml", "--quiet"}), 1, "", "");
}

TEST_F(SettingsTool, BackupKeepsTheFileAsItWas) {
    set({"G", "k", "1"});
    const std::string before = read("a.xml");
    set({"G", "k", "2", "--backup"});
    EXPECT_EQ(read("a.xml.bak"), before);
    EXPECT_NE(read("a.xml"), before);
}

TEST_F(SettingsTool, ReadOnlyCommandsChangeNothing) {
    set({"G", "k", "1"});
    write("broken.xml", "<settings>\n  <group");
    write("wrong.xml", "<settings><groups/></settings>");
    const auto names = folder.names();
    const std::string before = read("a.xml");
    for (const char* file : {"a.xml", "broken.xml", "wrong.xml", "missing.xml"}) {
        settings({file, "list"});
        settings({file, "get", "G", "nope"});
        settings({file, "export"});
        settings({file, "diff", "broken.xml"});
    }
    EXPECT_EQ(folder.names(), names);
    EXPECT_EQ(read("a.xml"), before);
}

}  // namespace

}  // namespace tav::test
