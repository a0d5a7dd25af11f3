// SPDX-License-Identifier: MIT
// The commands for a shell in the guides do what the guides say.
#include "tests/support/RunningProgram.h"
#include "tests/tool/GuideTool.h"

#include <chrono>
#include <gmock/gmock.h>
#include <thread>

namespace tav::test {

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::SizeIs;

class ApplicationGuide : public GuideTool {
protected:
    ApplicationGuide() : GuideTool("application.md") {}
};

TEST_F(ApplicationGuide, ListsRunningApplications) {
    ASSERT_THAT(commands(), SizeIs(3));
    EXPECT_THAT(does("# your running"), HasSubstr("PROCESS"));
    EXPECT_EQ(inShell("(" + commandWith("# exit code 1") + "\n) >/dev/null || echo $?"), "1\n");
    EXPECT_THAT(does("--json"), HasSubstr("\"applications\": ["));
}

class SecretsGuide : public GuideTool {
protected:
    SecretsGuide() : GuideTool("secrets.md") {}
};

TEST_F(SecretsGuide, KeepsSecretsAndNotes) {
    ASSERT_THAT(commands(), SizeIs(6));
    write("typed", "s3cret\n");
    const std::string add = commandWith("# asks for it");
    inShell(add.substr(0, add.find('#')) + "< typed");
    inShell("TOKEN=t0ken\n" + commandWith("# a note"));
    EXPECT_EQ(does("secret get"), "t0ken\n");
    EXPECT_EQ(does("secret list"), "password  Mail_org.example.mail (ann)\nnote      Token_\n");
    EXPECT_THAT(does("secret where"), HasSubstr("available; new items go here"));
    EXPECT_THAT(does("secret move"), EndsWith("0 moved\n"));
}

class SettingsGuide : public GuideTool {
protected:
    SettingsGuide() : GuideTool("tool.md") {}
};

TEST_F(SettingsGuide, ReadsChangesAndComparesAFile) {
    ASSERT_THAT(commands(), SizeIs(6));
    for (const char* file : {"photos.xml", "other.xml"})
        settings({file, "set", "Window", "Width", "1024"});
    EXPECT_THAT(does("# every group"), HasSubstr("Width"));
    EXPECT_EQ(does("get Window Width"), "1024\n");
    does("set Window Width");
    EXPECT_EQ(inShell("(" + commandWith("diff") + ") >/dev/null || echo $?"), "1\n");
    does("export");
    settings({"photos.xml", "set", "Window", "Width", "1"});
    does("import");
    EXPECT_EQ(does("get Window Width"), "1280\n");
}

class WatchingGuide : public GuideTool {
protected:
    WatchingGuide() : GuideTool("watching.md") {
        std::filesystem::create_directory(folder / "Pictures");
        std::filesystem::create_directory(folder / "Incoming");
        write("notes.txt", "");
    }
    /// The first line that the command prints while the file is changed again and again: it tells
    /// nothing of its start.
    std::string firstLine(const std::string& command, const std::string& file,
                          std::chrono::milliseconds between) {
        writeFile(folder / "command", "cd " + folder.path().string() + "\n" + command + "\n");
        const RunningProgram shell("/bin/bash", folder / "command");
        std::string line;
        {
            const std::jthread writer([&](const std::stop_token& end) {
                for (int i = 0; !end.stop_requested(); ++i) {
                    write(file, std::string(static_cast<std::size_t>(i % 100), 'x'));
                    std::this_thread::sleep_for(between);
                }
            });
            line = shell.readLine();
        }
        kill(-shell.process(), SIGKILL);
        return line;
    }
};

TEST_F(WatchingGuide, TellsOfItemsTreesAndWholeFiles) {
    constexpr auto kSoon = std::chrono::milliseconds(20);
    constexpr auto kSettled = std::chrono::seconds(1);
    // Drives come and go in the tests of the command.
    ASSERT_THAT(commands(), SizeIs(4));
    EXPECT_THAT(firstLine(commandWith("# one item"), "notes.txt", kSoon), EndsWith("/notes.txt"));
    EXPECT_THAT(firstLine(commandWith("# a tree"), "Pictures/a.jpg", kSoon), EndsWith("/a.jpg"));
    EXPECT_THAT(firstLine(commandWith("# files when"), "Incoming/a.jpg", kSettled),
                EndsWith("/a.jpg"));
}

}  // namespace

}  // namespace tav::test
