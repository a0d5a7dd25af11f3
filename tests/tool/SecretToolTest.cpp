// SPDX-License-Identifier: MIT
#include "tests/tool/TerminalTool.h"
#include "tests/tool/ToolProcess.h"

#include <csignal>
#include <cstdlib>
#include <gmock/gmock.h>

namespace tav::test {

namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

/// Of a user without a session bus.
class SecretTool : public ToolTest {
protected:
    SecretTool() {
        setenv("HOME", home.c_str(), 1);
        setenv("XDG_DATA_HOME", (home + "/data").c_str(), 1);
        unsetenv("DBUS_SESSION_BUS_ADDRESS");
        unsetenv("XDG_RUNTIME_DIR");
    }
    ToolResult secret(std::vector<std::string> arguments, const std::string& input = {}) {
        arguments.insert(arguments.begin(), "secret");
        return run(arguments, input);
    }

    const std::string home = folder.path().string();
};

TEST_F(SecretTool, GivesBackAPassword) {
    EXPECT_EQ(secret({"add", "Mail", "--account", "ann"}, "s3cret\n").code, 0);
    EXPECT_EQ(secret({"get", "Mail", "--account", "ann"}).output, "s3cret\n");
    EXPECT_EQ(secret({"add", "Mail", "--account", "ann"}, "other").code, 0);
    EXPECT_EQ(secret({"get", "Mail", "--account", "ann", "--json"}).output,
              "{\n  \"version\": 1,\n  \"item\": {\n    \"name\": \"Mail\",\n"
              "    \"account\": \"ann\",\n    \"secret\": \"other\"\n  }\n}\n");
    EXPECT_EQ(secret({"delete", "Mail", "--account", "ann"}).code, 0);
    expectResult(secret({"get", "Mail", "--account", "ann"}), 1, "",
                 "ula: Mail (ann): there is no such item\n"
                 "     'ula secret list' shows those there are\n");
}

TEST_F(SecretTool, KeepsNotesOfManyLinesWhole) {
    const std::string note = std::string(3000, 'x') + "\nsecond\n";
    EXPECT_EQ(secret({"add", "Note"}, note + "\n").code, 0);
    EXPECT_EQ(secret({"get", "Note"}).output, note + "\n");
}

TEST_F(SecretTool, ANoteIsReplacedByEditOnly) {
    EXPECT_EQ(secret({"edit", "Note"}, "x").code, 1);
    EXPECT_EQ(secret({"add", "Note"}, "one").code, 0);
    const ToolResult again = secret({"add", "Note"}, "two");
    EXPECT_EQ(again.code, 4);
    EXPECT_THAT(again.errors,
                HasSubstr("Note: The specified item already exists in the keychain."));
    EXPECT_EQ(secret({"edit", "Note"}, "two").code, 0);
    EXPECT_EQ(secret({"get", "Note"}).output, "two\n");
}

TEST_F(SecretTool, ListsNamesByQualifier) {
    secret({"add", "Mail", "--account", "ann", "--qualifier", "org.example"}, "s3cret");
    secret({"add", "Code"}, "s3cret");
    EXPECT_EQ(secret({"list"}).output, "note      Code_\npassword  Mail_org.example (ann)\n");
    EXPECT_EQ(secret({"list", "--qualifier", "org.example"}).output, "password  Mail (ann)\n");
    EXPECT_EQ(secret({"list", "--json", "--qualifier", ""}).output,
              "{\n  \"version\": 1,\n  \"items\": [\n    {\n      \"kind\": \"note\",\n"
              "      \"name\": \"Code\",\n      \"account\": \"\"\n    }\n  ]\n}\n");
}

TEST_F(SecretTool, SaysWhereSecretsAre) {
    secret({"add", "Code"}, "s3cret");
    EXPECT_EQ(
        secret({"where"}).output,
        "encrypted file  " + home +
            "/data/ula/keychain/items\n"
            "                available; new items go here\n"
            "secret service  /org/freedesktop/secrets/aliases/default\n"
            "                not available: No keychain is available. You may need to restart "
            "your computer.\n");
    EXPECT_THAT(secret({"where", "--json"}).output, HasSubstr("\"newItems\": true"));
}

TEST_F(SecretTool, MovesNothingToWhatIsNotThere) {
    secret({"add", "Code"}, "s3cret");
    const ToolResult moved = secret({"move", "service"});
    EXPECT_EQ(moved.code, 4);
    EXPECT_THAT(moved.errors, HasSubstr("0 moved, then: No keychain is available."));
    EXPECT_EQ(secret({"get", "Code"}).output, "s3cret\n");
}

TEST_F(SecretTool, TakesNoSecretAsAnArgument) {
    EXPECT_EQ(secret({"add", "Mail", "s3cret"}).code, 2);
    EXPECT_EQ(secret({"add", "Mail"}, "").code, 2);
    EXPECT_EQ(secret({"add", ""}, "x").code, 2);
    EXPECT_EQ(secret({}).code, 2);
}

TEST_F(SecretTool, ThePromptDoesNotShowWhatIsTyped) {
    TerminalTool tool(home, {"secret", "add", "Mail", "--account", "ann"});
    ASSERT_TRUE(tool.waitFor("Secret: "));
    tool.type("s3cret\n");
    EXPECT_EQ(tool.wait(), 0);
    EXPECT_THAT(tool.shown(), Not(HasSubstr("s3cret")));
    EXPECT_TRUE(tool.showsTyping());
    EXPECT_EQ(secret({"get", "Mail", "--account", "ann"}).output, "s3cret\n");
}

TEST_F(SecretTool, AnInterruptedPromptLeavesTheTerminalAsItWas) {
    TerminalTool tool(home, {"secret", "add", "Code"});
    ASSERT_TRUE(tool.waitFor("Secret: "));
    EXPECT_FALSE(tool.showsTyping());
    tool.signal(SIGINT);
    EXPECT_EQ(tool.wait(), -SIGINT);
    EXPECT_TRUE(tool.showsTyping());
    EXPECT_EQ(secret({"get", "Code"}).code, 1);
}

TEST_F(SecretTool, LeavesNoCoreFile) {
    TerminalTool tool(home, {"secret", "add", "Code"});
    ASSERT_TRUE(tool.waitFor("Secret: "));
    EXPECT_THAT(readFile("/proc/" + std::to_string(tool.id()) + "/limits"),
                ContainsRegex("Max core file size +0 "));
}

TEST_F(SecretTool, TellsOfADamagedKeychain) {
    secret({"add", "Code"}, "s3cret");
    write("data/ula/keychain/items", "x");
    const ToolResult result = secret({"get", "Code"});
    EXPECT_EQ(result.code, 3);
    EXPECT_THAT(result.errors, HasSubstr("is damaged; kept aside as"));
    EXPECT_THAT(result.errors,
                HasSubstr("Code: The specified keychain is not a valid keychain file."));
}

}  // namespace

}  // namespace tav::test
