// SPDX-License-Identifier: MIT
// ula volumes and ula trash.
#include "tests/tool/ToolProcess.h"

#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>

namespace tav::test {

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

class VolumesTool : public ToolTest {
protected:
    ToolResult volumes(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"volumes", "--folder", folder / "Volumes"});
        return run(arguments);
    }
};

TEST_F(VolumesTool, ShowsThatTheStartUpDiskIsMissing) {
    const ToolResult result = volumes({});
    EXPECT_EQ(result.code, 0);
    EXPECT_THAT(result.output, HasSubstr("Linux"));
    EXPECT_THAT(result.output, HasSubstr("missing         /\n"));
}

TEST_F(VolumesTool, MendMakesTheLinkAndThenFindsNothingToDo) {
    const ToolResult mended = volumes({"--mend"});
    EXPECT_EQ(mended.code, 0);
    EXPECT_THAT(mended.output, StartsWith("made " + (folder / "Volumes") + "\n"));
    EXPECT_THAT(mended.output, HasSubstr("linked " + (folder / "Volumes/Linux") + " -> /\n"));
    EXPECT_EQ(fs::read_symlink(folder / "Volumes/Linux"), "/");
    expectResult(volumes({"--mend"}), 0, "", "");
    EXPECT_THAT(volumes({}).output, HasSubstr("start-up disk"));
}

TEST_F(VolumesTool, MendLeavesForeignThingsAlone) {
    fs::create_directories(folder / "Volumes/own folder");
    write("Volumes/file", "text");
    EXPECT_EQ(volumes({"--mend"}).code, 0);
    EXPECT_EQ(read("Volumes/file"), "text");
    EXPECT_TRUE(fs::is_directory(folder / "Volumes/own folder"));
}

TEST_F(VolumesTool, JsonHasNameStateAndTarget) {
    fs::create_directory(folder / "Volumes");
    fs::create_symlink("/", folder / "Volumes/Disk");
    EXPECT_THAT(volumes({"--json"}).output,
                StartsWith("{\n  \"version\": 1,\n  \"volumes\": [\n    {\n"
                           "      \"name\": \"Disk\",\n"
                           "      \"state\": \"start-up disk\",\n"
                           "      \"target\": \"/\"\n    }"));
}

TEST_F(VolumesTool, MendThatFailsSaysWhichPathAndWhy) {
    write("Volumes", "a file where the folder should be");
    const ToolResult result = volumes({"--mend"});
    EXPECT_EQ(result.code, 4);
    EXPECT_THAT(result.errors,
                StartsWith("ula: " + (folder / "Volumes/Linux") + ": Not a directory\n"));
}

TEST_F(VolumesTool, RelativeFolderIsRefused) {
    const ToolResult result = run({"volumes", "--folder", "Volumes"});
    EXPECT_EQ(result.code, 2);
    EXPECT_THAT(result.errors, HasSubstr("Volumes does not begin with /"));
}

class TrashTool : public ToolTest {
protected:
    TrashTool() { setenv("XDG_DATA_HOME", (folder / "data").c_str(), 1); }
};

TEST_F(TrashTool, SaysWhereEachFileWent) {
    write("one.txt", "text");
    expectResult(run({"trash", "one.txt"}), 0,
                 (folder / "one.txt") + " -> " + (folder / "data/Trash/files/one.txt") + "\n", "");
    EXPECT_EQ(read("data/Trash/files/one.txt"), "text");
}

TEST_F(TrashTool, TrashesTheOthersWhenOneIsMissing) {
    write("one.txt", "text");
    const ToolResult result = run({"trash", "missing", "one.txt"});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.errors,
              "ula: " + (folder / "missing") + ": there is no such file or folder\n");
    EXPECT_TRUE(fs::exists(folder / "data/Trash/files/one.txt"));
}

TEST_F(TrashTool, ReceiptsPutEverythingBack) {
    write("one.txt", "first");
    write("two.txt", "second");
    write("gone.json", run({"trash", "one.txt", "missing", "two.txt", "--json"}).output);
    EXPECT_FALSE(fs::exists(folder / "one.txt"));
    expectResult(run({"trash", "--restore", "gone.json"}), 0,
                 (folder / "one.txt") + "\n" + (folder / "two.txt") + "\n", "");
    EXPECT_EQ(read("one.txt"), "first");
    EXPECT_EQ(read("two.txt"), "second");
}

TEST_F(TrashTool, ReceiptsOfALaterVersionAreRefused) {
    write("gone.json", R"({"version": 2, "receipts": []})");
    expectResult(run({"trash", "--restore", "gone.json"}), 3, "",
                 "ula: gone.json: the version of these receipts is not known\n"
                 "     restore them with the ula that wrote them\n");
}

TEST_F(TrashTool, AWorkingFolderThatHasGoneIsTold) {
    const fs::path before = fs::current_path();
    fs::create_directory(folder / "gone");
    fs::current_path(folder / "gone");
    fs::remove(folder / "gone");
    const ToolResult trash = runTool(".", {"trash", "one.txt"});
    const ToolResult dir = runTool(".", {"dir"});
    fs::current_path(before);
    expectResult(trash, 3, "", "ula: one.txt: No such file or directory\n");
    expectResult(dir, 3, "", "ula: .: No such file or directory\n");
}

TEST_F(TrashTool, NamesMayLookLikeLists) {
    for (const char* const name : {"[a,b]", "{}", "[half"})
        write(name, name);
    write("[gone].json", run({"trash", "[a,b]", "{}", "[half", "--json"}).output);
    expectResult(run({"trash", "--restore", "[gone].json"}), 0,
                 (folder / "[a,b]") + "\n" + (folder / "{}") + "\n" + (folder / "[half") + "\n",
                 "");
    EXPECT_EQ(read("[a,b]"), "[a,b]");
    run({"trash", "[a,b]"});
    expectResult(run({"trash", "--restore-path=[a,b]"}), 0, (folder / "[a,b]") + "\n", "");
}

TEST_F(TrashTool, WhatHasTakenAPlaceStays) {
    write("one.txt", "old");
    const std::string receipts = run({"trash", "one.txt", "--json"}).output;
    write("one.txt", "new");
    const ToolResult result = run({"trash", "--restore", "-"}, receipts);
    EXPECT_EQ(result.code, 1);
    EXPECT_THAT(result.errors, StartsWith("ula: " + (folder / "one.txt") + ": "));
    EXPECT_EQ(read("one.txt"), "new");
}

TEST_F(TrashTool, PathGetsBackWhatWasTrashedLastFromThere) {
    write("one.txt", "first");
    run({"trash", "one.txt"});
    write("one.txt", "second");
    run({"trash", "one.txt"});
    expectResult(run({"trash", "--restore-path", "one.txt"}), 0, (folder / "one.txt") + "\n", "");
    EXPECT_EQ(read("one.txt"), "second");
}

TEST_F(TrashTool, PathOfNothingInTheTrashIsToldAndTheOthersComeBack) {
    write("one.txt", "text");
    run({"trash", "one.txt"});
    expectResult(run({"trash", "--restore-path", "none", "one.txt"}), 1,
                 (folder / "one.txt") + "\n",
                 "ula: " + (folder / "none") + ": nothing in the trash came from there\n");
    EXPECT_EQ(read("one.txt"), "text");
}

TEST_F(TrashTool, JsonOfARestoreTellsWhatCameBackAndWhatDidNot) {
    write("one.txt", "text");
    run({"trash", "one.txt"});
    const ToolResult result = run({"trash", "--restore-path", "one.txt", "none", "--json"});
    EXPECT_EQ(result.code, 1);
    EXPECT_THAT(result.output, HasSubstr("\"original\": \"" + (folder / "one.txt") + "\""));
    EXPECT_THAT(result.output, HasSubstr("\"identity\": \""));
    EXPECT_THAT(result.output, HasSubstr("\"error\": \"nothing in the trash came from there\""));
}

TEST_F(TrashTool, FilesAndRestoringExcludeEachOther) {
    write("one.txt", "text");
    EXPECT_EQ(run({"trash", "one.txt", "--restore", "x"}).code, 2);
    EXPECT_EQ(run({"trash", "--restore", "x", "--restore-path", "y"}).code, 2);
    EXPECT_EQ(read("one.txt"), "text");
}

TEST_F(TrashTool, ReceiptsThatAreNoneAreRefused) {
    write("bad.json", "[{\"original\": 1, \"trashed\": 2}");
    const ToolResult result = run({"trash", "--restore", "bad.json"});
    EXPECT_EQ(result.code, 3);
    EXPECT_THAT(result.errors, StartsWith("ula: bad.json: these are no receipts: "));
    EXPECT_EQ(run({"trash", "--restore", "missing.json"}).code, 3);
    for (const char* const text :
         {"[]", R"({"receipts": []})",
          R"({"version": 1, "receipts": [{"original": "/a", "trashed": 2, "identity": ""}]})"})
        EXPECT_EQ(run({"trash", "--restore", "-"}, text).code, 3) << text;
}

TEST_F(TrashTool, NothingToDoIsWrongUsage) {
    EXPECT_EQ(run({"trash"}).code, 2);
}

}  // namespace

}  // namespace tav::test
