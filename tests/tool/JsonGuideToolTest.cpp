// SPDX-License-Identifier: MIT
// The commands in docs/guide/json.md do what they are there for. Needs root: mounts in a space of
// its own.
#include "tests/support/Picture.h"
#include "tests/support/RunningProgram.h"
#include "tests/tool/GuideTool.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <thread>

namespace tav::test {

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::ContainsRegex;
using testing::EndsWith;
using testing::HasSubstr;
using testing::SizeIs;

class JsonGuide : public GuideTool {
protected:
    JsonGuide() : GuideTool("json.md") {
        fs::create_directories(folder / "Pictures/2009");
        write("Pictures/late.jpg", picture("2009:03:16 10:20:30"));
        write("Pictures/soon.jpg", picture("2009:03:15 10:20:30"));
        write("old.jpg", picture());
        fs::copy_file(ULA_JSON_SCHEMA, folder / "ula-json.schema.json");
        settings({"photo.xml", "set", "Window", "Width", "1280"});
    }
};

TEST_F(JsonGuide, EveryCommandIsTriedHere) {
    EXPECT_THAT(commands(), SizeIs(10));
}

TEST_F(JsonGuide, ShowsDrivesTheSystemAndFolders) {
    EXPECT_EQ(does("drives"), "Linux: fixed\n");
    EXPECT_THAT(does("memory"), ContainsRegex("^[1-9][0-9]+\n$"));
    EXPECT_EQ(does("folders"), (folder / "Pictures") + "\n");
    EXPECT_THAT(does("Directory"), EndsWith("/Pictures/2009\n"));
}

TEST_F(JsonGuide, SortsPicturesByTheirDates) {
    EXPECT_EQ(does("taken"), "Pictures/soon.jpg\nPictures/late.jpg\n");
}

TEST_F(JsonGuide, TellsWhatMendsProblems) {
    fs::remove("/Volumes/Linux");
    // The exit code says that there are some.
    std::string command = commandWith("doctor");
    command.insert(command.find('|'), "|| true) ");
    EXPECT_THAT(inShell("(" + command), HasSubstr("ula volumes --mend\n"));
    fs::create_symlink("/", "/Volumes/Linux");
}

TEST_F(JsonGuide, ReadsSettings) {
    EXPECT_EQ(does("settings"), "Width\n");
}

TEST_F(JsonGuide, KeepsReceipts) {
    EXPECT_EQ(does("trash"), (folder / "data/Trash/files/old.jpg") + "\n");
}

TEST_F(JsonGuide, ValidatesADocument) {
    EXPECT_EQ(does("jsonschema"), "");
}

TEST_F(JsonGuide, FollowsWhatIsCreated) {
    writeFile(folder / "command", "cd " + folder.path().string() + "\n" + commandWith("watch"));
    const RunningProgram shell("/bin/bash", folder / "command");
    std::string line;
    {
        // It tells nothing of its start.
        std::jthread writer([&](const std::stop_token& end) {
            for (int i = 0; !end.stop_requested(); ++i) {
                write("Pictures/" + std::to_string(i) + ".jpg", "");
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
            }
        });
        line = shell.readLine();
    }
    EXPECT_THAT(line, AllOf(HasSubstr("/Pictures/"), EndsWith(".jpg")));
    kill(-shell.process(), SIGKILL);
}

}  // namespace

}  // namespace tav::test
