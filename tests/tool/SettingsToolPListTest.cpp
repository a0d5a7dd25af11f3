// SPDX-License-Identifier: MIT
#include "tests/tool/ToolProcess.h"

#include <cstdlib>
#include <filesystem>

namespace tav::test {

namespace {

class SettingsToolPList : public ToolTest {
protected:
    SettingsToolPList() { setenv("HOME", folder.path().c_str(), 1); }

    /// `ula settings --plist Acme Viewer …`
    ToolResult list(std::vector<std::string> words, const std::string& input = {}) {
        words.insert(words.begin(), {"--plist", "Acme", "Viewer"});
        return settings(words, input);
    }
    void set(std::vector<std::string> words) {
        words.insert(words.begin(), "set");
        expectResult(list(words), 0, "", "");
    }
    void writeList(const std::string& text) const {
        std::filesystem::create_directories(preferences);
        writeFile(path, text);
    }
    std::vector<std::string> namesBeside() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(preferences))
            names.push_back(entry.path().filename().string());
        return names;
    }

    const std::string preferences = folder / "Library/Preferences";
    const std::string path = preferences + "/com.Acme.Viewer.plist";
};

TEST_F(SettingsToolPList, SetMakesTheListAndGetReadsIt) {
    set({"Window", "Width", "1280"});
    set({"Window", "Recent", "a", "b"});
    EXPECT_NE(readFile(path).find("<integer>1280</integer>"), std::string::npos);
    expectResult(list({"get", "Window", "Width"}), 0, "1280\n", "");
    expectResult(list({"get", "Window", "Recent", "--json"}), 0,
                 "{\n  \"version\": 1,\n  \"setting\": {\"type\": \"string_array\", \"value\": "
                 "[\"a\", \"b\"]}\n}\n",
                 "");
    expectResult(list({}), 0,
                 "Window\n  Recent  string_array  \"a\"\n                        \"b\"\n"
                 "  Width   int           1280\n",
                 "");
    expectResult(list({"list", "Window", "--json"}), 0, list({"export"}).output, "");
}

TEST_F(SettingsToolPList, UnsetImportExportAndDiffWorkOnIt) {
    set({"G", "K", "1"});
    set({"G", "L", "x"});
    const std::string exported = list({"export"}).output;
    expectResult(list({"unset", "G", "L"}), 0, "", "");
    expectResult(
        list({"get", "G", "L"}), 1, "",
        "ula: " + path +
            ": there is no key \"L\" in group \"G\"\n"
            "     'ula settings FILE list' shows what there is; --default VALUE gives a value "
            "instead\n");
    std::filesystem::copy_file(path, folder / "other.plist");
    expectResult(list({"diff", "other.plist"}), 0, "", "");
    expectResult(list({"import", "-", "--backup"}, exported), 0, "", "");
    EXPECT_EQ(readFile(path + ".bak"), readFile(folder / "other.plist"));
    EXPECT_EQ(list({"diff", "other.plist"}).code, 1);
    EXPECT_EQ(list({"export"}).output, exported);
}

TEST_F(SettingsToolPList, LookingWritesNothing) {
    expectResult(
        list({"list"}), 3, "",
        "ula: " + path +
            ": there is no such file\n"
            "     check the path, or start the file with: ula settings --plist COMPANY APP "
            "set GROUP KEY VALUE\n");
    EXPECT_TRUE(folder.names().empty());
    writeList("{ G = { K = text; }; }");
    expectResult(list({"get", "G", "K"}), 0, "text\n", "");
    EXPECT_EQ(readFile(path), "{ G = { K = text; }; }");
}

TEST_F(SettingsToolPList, ABrokenListIsRefusedAndLeftAlone) {
    writeList("<plist><dict>\n<key>G</key>");
    const std::string message =
        "ula: " + path + ": no property list: line 2: the text ends too early\n";
    expectResult(list({"list"}), 3, "", message);
    expectResult(list({"set", "G", "K", "1"}), 3, "", message);
    EXPECT_EQ(namesBeside().size(), 1U);
    writeList("<plist><dict><key>G</key><dict><key>K</key><date>2026-11-21T08:30:00Z</date></dict>"
              "</dict></plist>");
    const ToolResult result = list({"set", "G", "K", "1"});
    EXPECT_EQ(result.code, 3);
    EXPECT_NE(result.errors.find("group \"G\", key \"K\" holds what is no setting"),
              std::string::npos);
}

TEST_F(SettingsToolPList, WrongUsageIsExitCodeTwo) {
    EXPECT_EQ(settings({"a.xml", "--plist", "Acme", "Viewer", "list"}).code, 2);
    EXPECT_EQ(settings({"--plist", "Acme"}).code, 2);
    EXPECT_EQ(settings({"a.xml", "--machine", "list"}).code, 2);
    EXPECT_EQ(settings({"--plist", "", "Viewer", "list"}).code, 2);
    EXPECT_TRUE(folder.names().empty());
}

TEST_F(SettingsToolPList, TheMachinesListIsAnotherFile) {
    const ToolResult result =
        settings({"--plist", "Acme", "No such application", "--machine", "list"});
    EXPECT_EQ(result.code, 3);
    EXPECT_EQ(
        result.errors.rfind("ula: /Library/Preferences/com.Acme.No such application.plist:", 0),
        0U);
}

}  // namespace
}  // namespace tav::test
