// SPDX-License-Identifier: MIT
#include "tests/tool/ToolProcess.h"

#include <sys/stat.h>

namespace tav::test {

namespace {

constexpr const char* kUsageHint = "     'ula --help' and 'ula COMMAND --help' show how\n";

class SettingsToolError : public ToolTest {
protected:
    void expectUsageError(const std::vector<std::string>& arguments, const std::string& message) {
        expectResult(run(arguments), 2, "", "ula: " + message + "\n" + kUsageHint);
    }
};

TEST_F(SettingsToolError, WrongUsageIsExitCodeTwo) {
    expectUsageError({}, "A subcommand is required");
    expectUsageError({"settings"}, "FILE is required");
    expectUsageError({"settings", "a.xml", "frob"},
                     "The following argument was not expected: frob");
    expectUsageError({"settings", "a.xml", "get", "G"}, "KEY is required");
    expectUsageError({"settings", "a.xml", "set", "G", "k", "1", "--type", "float"},
                     "--type: float not in {int,bool,double,string,string_array}");
    expectResult(settings({"a.xml", "set", "G", "k", "-x"}), 2, "",
                 "ula: The following argument was not expected: -x\n"
                 "     put -- before values that begin with -, or see 'ula settings --help'\n");
    expectResult(settings({"a.xml", "set", "", "k", "1"}), 2, "",
                 "ula: GROUP and KEY must not be empty\n");
    EXPECT_TRUE(folder.names().empty());
}

TEST_F(SettingsToolError, AnArgumentThatLooksLikeAListIsQuotedAsItIs) {
    expectUsageError({"settings", "a.xml", "[frob]"},
                     "The following argument was not expected: [frob]");
}

TEST_F(SettingsToolError, AValueThatDoesNotFitIsRefused) {
    settings({"a.xml", "set", "G", "k", "1"});
    const std::string before = read("a.xml");
    expectResult(settings({"a.xml", "set", "G", "k", "abc"}), 2, "",
                 "ula: \"abc\" is not an int: a whole number from -2147483648 to 2147483647\n"
                 "     use --type to store another type, for instance --type string\n");
    expectResult(settings({"a.xml", "set", "G", "new", "3000000000"}), 2, "",
                 "ula: \"3000000000\" is not an int: a whole number from -2147483648 to "
                 "2147483647\n"
                 "     use --type to store another type, for instance --type string\n");
    expectResult(settings({"a.xml", "set", "G", "k", "1", "2"}), 2, "",
                 "ula: the type int takes one VALUE, not 2\n"
                 "     use --type string_array to store them all\n");
    EXPECT_EQ(settings({"a.xml", "set", "G", "k"}).code, 2);
    EXPECT_EQ(settings({"a.xml", "set", "G", "k", "--json", "{\"a\":"}).code, 2);
    EXPECT_EQ(settings({"a.xml", "set", "G", "k", "--json", "null"}).code, 2);
    EXPECT_EQ(settings({"a.xml", "set", "G", "k", "maybe", "--type", "bool"}).code, 2);
    EXPECT_EQ(read("a.xml"), before);
}

TEST_F(SettingsToolError, AMissingFileSaysWhatToDo) {
    const std::string message =
        "ula: a.xml: there is no such file\n"
        "     check the path, or start the file with: ula settings FILE set GROUP KEY VALUE\n";
    expectResult(settings({"a.xml", "list"}), 3, "", message);
    expectResult(settings({"a.xml", "get", "G", "k"}), 3, "", message);
    expectResult(settings({"a.xml", "export"}), 3, "", message);
    expectResult(settings({"a.xml", "unset", "G"}), 3, "", message);
    expectResult(settings({"a.xml", "diff", "a.xml"}), 3, "", message);
    EXPECT_TRUE(folder.names().empty());
}

TEST_F(SettingsToolError, ABrokenFileIsToldWithItsPlaceAndLeftAlone) {
    write("a.xml", "<settings>\n  <group name=\"G\">\n    <key name=\"k\" type=\"float\"/>\n"
                   "  </group>\n</settings>\n");
    const std::string message = "ula: a.xml:3:6: unknown tag in the settings file: unknown type "
                                "\"float\"\n";
    expectResult(settings({"a.xml", "list"}), 3, "", message);
    expectResult(settings({"a.xml", "set", "G", "x", "1"}), 3, "", message);
    write("b.xml", "<settings>\n  <groups name=\"G\"/>\n</settings>\n");
    EXPECT_EQ(settings({"b.xml", "list"})
                  .errors.rfind("ula: b.xml:2:4: unknown tag in the setings "
                                "file",
                                0),
              0u);
    write("c.xml", "<settings>\n  <group");
    const ToolResult broken = settings({"c.xml", "set", "G", "x", "1"});
    EXPECT_EQ(broken.code, 3);
    EXPECT_EQ(broken.errors.rfind("ula: c.xml:2:", 0), 0u) << broken.errors;
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"a.xml", "b.xml", "c.xml"}));
}

TEST_F(SettingsToolError, AFolderABinaryAndAnEmptyFileAreExitCodeThree) {
    write("binary.xml", std::string("\x7F"
                                    "ELF\0\1\2\3\xFF\xFE",
                                    10));
    write("empty.xml", "");
    for (const char* file : {".", "binary.xml", "empty.xml"}) {
        const ToolResult result = settings({file, "list"});
        EXPECT_EQ(result.code, 3) << file;
        EXPECT_EQ(result.output, "") << file;
        EXPECT_EQ(result.errors.rfind(std::string("ula: ") + file + ":", 0), 0u) << result.errors;
    }
}

TEST_F(SettingsToolError, OddValuesAreReadAsZeroWithAWarning) {
    write("a.xml", "<settings><group name=\"G\"><key name=\"k\" type=\"int\"><value "
                   "value=\"abc\"/></key></group></settings>");
    expectResult(settings({"a.xml", "get", "G", "k"}), 0, "0\n",
                 "ula: a.xml: warning: \"abc\" is not an int in group \"G\", key \"k\"\n");
}

TEST_F(SettingsToolError, OddValuesAreWarnedOfOnceByUnset) {
    write("a.xml", "<settings><group name=\"G\"><key name=\"k\" type=\"int\"><value "
                   "value=\"abc\"/></key></group></settings>");
    expectResult(settings({"a.xml", "unset", "G", "k"}), 0, "",
                 "ula: a.xml: warning: \"abc\" is not an int in group \"G\", key \"k\"\n");
}

TEST_F(SettingsToolError, WhatXmlCannotCarryIsExitCodeFour) {
    settings({"a.xml", "set", "G", "k", "1"});
    const std::string before = read("a.xml");
    const ToolResult result = settings({"a.xml", "set", "G", "bell", "\a"});
    EXPECT_EQ(result.code, 4);
    EXPECT_EQ(result.errors.rfind("ula: a.xml: group \"G\", key \"bell\": ", 0), 0u)
        << result.errors;
    EXPECT_EQ(read("a.xml"), before);
}

TEST_F(SettingsToolError, AFolderThatIsNotThereIsExitCodeFour) {
    expectResult(settings({"no/a.xml", "set", "G", "k", "1"}), 4, "",
                 "ula: cannot write \"no/a.xml\": No such file or directory\n"
                 "     nothing was changed\n");
    settings({"a.xml", "set", "G", "k", "1"});
    expectResult(settings({"a.xml", "export", "no/a.json"}), 4, "",
                 "ula: cannot write \"no/a.json\": No such file or directory\n");
}

TEST_F(SettingsToolError, AFullDiskBehindStandardOutputIsExitCodeFour) {
    settings({"a.xml", "set", "G", "k", "1"});
    const ToolResult result =
        runTool(folder.path().string(), {"settings", "a.xml", "list"}, "", "/dev/full");
    EXPECT_EQ(result.code, 4);
    EXPECT_EQ(result.errors, "ula: cannot write standard output: No space left on device\n");
}

}  // namespace

}  // namespace tav::test
