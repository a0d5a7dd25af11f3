// SPDX-License-Identifier: MIT
// `ula dir`, in a /Volumes of its own in which "Linux" leads to "/". Needs root.
#include "ToolProcess.h"

#include "tests/support/Mounts.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace tav::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class DirTool : public ToolTest {
protected:
    static void SetUpTestSuite() { ASSERT_EQ(isolateMounts(), ""); }

    void SetUp() override {
        fs::create_directories(folder.path() / "Item 10");
        fs::create_directories(folder.path() / "item 9/inner");
        fs::create_symlink("item 9", folder.path() / "link");
        write(".secret", "x");
    }
};

TEST_F(DirTool, ListsInTheFindersOrder) {
    expectResult(run({"dir", "--sort"}), 0,
                 "folder          item 9\n"
                 "folder          Item 10\n"
                 "link            link -> " +
                     onStartupDisk(folder / "item 9") + "\n",
                 "");
}

TEST_F(DirTool, ListsHiddenItemsWhenAsked) {
    EXPECT_THAT(run({"dir", "-a"}).output, HasSubstr("file            .secret (hidden)\n"));
}

TEST_F(DirTool, GoesIntoFoldersButNotThroughLinks) {
    EXPECT_EQ(run({"dir", "-R", "--sort"}).output, "folder          item 9\n"
                                                   "folder            inner\n"
                                                   "folder          Item 10\n"
                                                   "link            link -> " +
                                                       onStartupDisk(folder / "item 9") + "\n");
}

TEST_F(DirTool, GivesJsonToPrograms) {
    const ToolResult result = run({"dir", "--json", "--sort"});
    const nlohmann::json list = nlohmann::json::parse(result.output)["items"];
    ASSERT_EQ(list.size(), 3U);
    EXPECT_EQ(list[0]["name"], "item 9");
    EXPECT_EQ(list[0]["flags"], nlohmann::json({"Directory"}));
    EXPECT_EQ(list[2]["target"], onStartupDisk(folder / "item 9"));
    EXPECT_EQ(run({"dir", "--json", "Item 10"}).output,
              "{\n  \"version\": 1,\n  \"items\": []\n}\n");
}

TEST_F(DirTool, ShowsNamesThatAreNoTextAsEscapes) {
    write("odd\n\xFF", "x");
    const ToolResult result = run({"dir", "-a", "--sort"});
    EXPECT_EQ(result.code, 0);
    EXPECT_THAT(result.output, HasSubstr("odd\\n\\xff (hidden)\n"));
}

TEST_F(DirTool, TellsHowFarALongListingIsOnlyWhereLinesCanBeRedrawn) {
    fs::create_directory(folder / "many");
    for (int i = 0; i < 30'000; ++i)
        write("many/" + std::to_string(i), "");
    const std::string place = folder.path().string();
    EXPECT_THAT(runToolOnTerminal(place, {"dir", "many"}).errors, HasSubstr("listing: "));
    EXPECT_EQ(runToolOnTerminal(place, {"dir", "many"}, "dumb").errors, "");
}

TEST_F(DirTool, SaysThatNothingIsThere) {
    expectResult(run({"dir", "nowhere"}), 1, "", "ula: there is nothing at \"nowhere\"\n");
}

TEST_F(DirTool, SaysThatAFileIsNoFolder) {
    expectResult(run({"dir", ".secret"}), 3, "",
                 "ula: \".secret\" is no folder, or may not be read\n"
                 "     'ls -ld' shows who may read it\n");
}

TEST_F(DirTool, SaysHowTheStartUpDiskGetsAName) {
    fs::remove("/Volumes/Linux");
    const ToolResult result = run({"dir"});
    fs::create_symlink("/", "/Volumes/Linux");
    expectResult(result, 3, "",
                 "ula: the start-up disk has no name in /Volumes\n"
                 "     'sudo ula volumes --mend' gives it one\n");
}

}  // namespace
}  // namespace tav::test
