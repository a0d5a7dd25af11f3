// SPDX-License-Identifier: MIT
// What the shells themselves make of the completions, and man(1) of the manual pages.
#include "tests/tool/ToolProcess.h"

#include <filesystem>
#include <gmock/gmock.h>

namespace tav::test {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;

class CompletionTool : public ToolTest {
protected:
    /// The file of a shell's completion.
    std::string file(const std::string& shell) {
        const ToolResult result = run({"completion", shell});
        EXPECT_EQ(result.code, 0);
        EXPECT_EQ(result.errors, "");
        writeFile(folder / shell, result.output);
        return folder / shell;
    }

    /// What bash offers for the last of the words.
    std::vector<std::string> inBash(const std::string& words, int last) {
        return lines(outputOf("bash -c 'source " + file("bash") + "; COMP_WORDS=(" + words +
                              "); COMP_CWORD=" + std::to_string(last) +
                              "; _ula; printf \"%s\\n\" \"${COMPREPLY[@]}\"'"));
    }
    std::vector<std::string> inFish(const std::string& line) {
        return lines(outputOf("HOME=" + (folder / "") + " fish --no-config -c 'source " +
                              file("fish") + "; complete -C \"" + line + "\"'"));
    }
    /// What is handed to zsh's own functions, one line each.
    std::vector<std::string> inZsh(const std::string& words, int last, const std::string& prefix) {
        writeFile(folder / "try",
                  "_describe() { local -a list; [[ $1 == -o ]] && shift; list=(\"${(@P)2}\");"
                  " print -l -- \"${(@)list}\" }\n"
                  "_files() { print FILES }\n"
                  "compadd() { print -l -- \"${(@P)2}\" }\n"
                  "words=(" +
                      words + ")\nCURRENT=" + std::to_string(last) + "\nPREFIX='" + prefix +
                      "'\nsource " + file("zsh") + "\n");
        return lines(outputOf("zsh -f " + (folder / "try")));
    }
};

TEST_F(CompletionTool, BashCompletesCommands) {
    EXPECT_THAT(inBash("ula se", 1), ElementsAre("secret", "settings"));
    EXPECT_THAT(inBash("ula \"\"", 1),
                IsSupersetOf({"cameras", "completion", "dir", "doctor", "watch"}));
    EXPECT_THAT(inBash("ula \"\"", 1), Not(Contains("manuals")));
    EXPECT_THAT(inBash("ula secret \"\"", 2),
                ElementsAre("add", "get", "edit", "delete", "list", "where", "move"));
}

TEST_F(CompletionTool, BashFindsTheCommandBehindAFile) {
    EXPECT_THAT(inBash("ula settings photo.xml unse", 3), ElementsAre("unset"));
}

TEST_F(CompletionTool, BashCompletesOptions) {
    EXPECT_THAT(inBash("ula screens --", 2), IsSupersetOf({"--draw", "--json", "--help"}));
    EXPECT_THAT(inBash("ula doctor --", 2), IsSupersetOf({"--json", "--help"}));
    EXPECT_THAT(inBash("ula secret add --acc", 3), ElementsAre("--account"));
}

TEST_F(CompletionTool, BashCompletesValues) {
    EXPECT_THAT(inBash("ula completion z", 2), ElementsAre("zsh"));
    EXPECT_THAT(inBash("ula secret move \"\"", 3), ElementsAre("service", "file"));
}

TEST_F(CompletionTool, FishCompletesWithWhatIsDone) {
    EXPECT_THAT(inFish("ula scr"), ElementsAre(testing::StartsWith("screens\t")));
    EXPECT_THAT(inFish("ula doc"), ElementsAre(testing::StartsWith("doctor\tCheck this computer")));
    EXPECT_THAT(inFish("ula secret a"), Contains(testing::StartsWith("add\tStore a password")));
    EXPECT_THAT(inFish("ula screens --j"), ElementsAre("--json\tAs JSON"));
    EXPECT_THAT(inFish("ula secret move s"), Contains("service"));
}

TEST_F(CompletionTool, ZshCompletesWithWhatIsDone) {
    EXPECT_THAT(inZsh("ula ''", 2, ""), Contains(testing::StartsWith("secret:Passwords")));
    EXPECT_THAT(inZsh("ula ''", 2, ""),
                Contains(testing::StartsWith("doctor:Check this computer")));
    EXPECT_THAT(inZsh("ula secret ''", 3, ""),
                IsSupersetOf({"add:Store a password or a note", "FILES"}));
    EXPECT_THAT(inZsh("ula screens --", 3, "--"), Contains("--json:As JSON"));
}

TEST_F(CompletionTool, AnUnknownShellIsToldWithTheKnownOnes) {
    const ToolResult result = run({"completion", "tcsh"});
    EXPECT_EQ(result.code, 2);
    EXPECT_THAT(result.errors, HasSubstr("tcsh not in {bash,fish,zsh}"));
}

TEST_F(CompletionTool, EveryCommandHasAManualPageThatManReadsWithoutAWarning) {
    ASSERT_EQ(run({"manuals", "man"}).code, 0);
    std::vector<std::string> pages;
    for (const auto& page : std::filesystem::directory_iterator(folder / "man"))
        pages.push_back(page.path().filename());
    EXPECT_THAT(pages, IsSupersetOf({"ula.1", "ula-dir.1", "ula-doctor.1", "ula-secret.1",
                                     "ula-settings.1"}));
    for (const std::string& page : pages)
        EXPECT_EQ(outputOf("LC_ALL=C.UTF-8 MANWIDTH=100 man --warnings -l " +
                           (folder / ("man/" + page)) + " 2>&1 >/dev/null"),
                  "")
            << page;
}

TEST_F(CompletionTool, WhatStandsForAnArgumentIsInCapitals) {
    EXPECT_THAT(run({"running", "--help"}).output, HasSubstr("running [OPTIONS] [NAME]\n"));
    EXPECT_THAT(run({"watch", "--help"}).output, HasSubstr("watch [OPTIONS] [PATH...]\n"));
    EXPECT_THAT(run({"cameras", "import", "--help"}).output,
                HasSubstr("cameras import [OPTIONS] FOLDER\n"));
}

TEST_F(CompletionTool, AManualPageSaysWhatHelpSays) {
    ASSERT_EQ(run({"manuals", "man"}).code, 0);
    const std::string page = outputOf("LC_ALL=C.UTF-8 MANWIDTH=100 MAN_KEEP_FORMATTING= man -l " +
                                      (folder / "man/ula-secret.1") + " | col -b");
    EXPECT_EQ(page.find("Examples:"), page.rfind("Examples:"));
    for (const char* text :
         {"ula-secret - Passwords and notes in the keychain", "ula secret add [OPTIONS] NAME",
          "--account TEXT", "Whose password; a note without", "service|file"})
        EXPECT_THAT(page, HasSubstr(text));
}

}  // namespace

}  // namespace tav::test
