// SPDX-License-Identifier: MIT
#include "AppKit/Trash.h"
#include "AppKit/TrashInfo.h"
#include "Sandbox.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace {

using namespace appkit;
using namespace trashtest;
namespace fs = std::filesystem;

TEST(TrashInfo, IsReadAsItWasWritten) {
    const std::string path = "/a/100% \xC3\xA4\n\xFF.txt";
    auto info = parseTrashInfo(trashInfoText(path, 0));
    ASSERT_TRUE(info);
    EXPECT_EQ(info->path, path);
    EXPECT_EQ(info->date.size(), 19u);
}

TEST(TrashInfo, OfOtherProgramsIsRead) {
    auto info = parseTrashInfo("# a comment\n[Other]\nPath=/wrong\n[Trash Info]\nOther=1\n"
                               "Path=/a%2fb%2\nPath=/second\nDeletionDate=2026-01-02T03:04:05");
    ASSERT_TRUE(info);
    EXPECT_EQ(info->path, "/a/b%2");
    EXPECT_EQ(info->date, "2026-01-02T03:04:05");
}

TEST(TrashInfo, WithoutAUsablePathIsNone) {
    for (const char* text : {"", "\n", "Path=/a", "[Trash Info]", "[Trash Info]\nPath=\n",
                             "[Trash Info]\nPath=/a%00b\n", "[Trash Info]\npath=/a\n"})
        EXPECT_FALSE(parseTrashInfo(text)) << text;
}

class TrashSearch : public testing::Test {
protected:
    std::vector<TrashReceipt> find(const std::string& path) { return findInTrash(path, places); }

    TrashReceipt trash(const std::string& path) {
        TrashOutcome outcome = moveToTrash(path, places);
        EXPECT_TRUE(outcome.done()) << outcome.explanation();
        return outcome.receipt;
    }

    Sandbox sandbox;
    TrashPlaces places = sandbox.places();
};

TEST_F(TrashSearch, FindsItemsOfAPathTheLastTrashedFirst) {
    std::time_t now = 1'000'000;
    places.clock = [&now] { return now++; };
    std::string path = sandbox.makeFile("one", "first");
    TrashReceipt first = trash(path);
    TrashReceipt other = trash(sandbox.makeFile("other"));
    TrashReceipt second = trash(sandbox.makeFile("one", "second"));
    auto found = find(path);
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].trashedPath, second.trashedPath);
    EXPECT_EQ(found[0].infoPath, second.infoPath);
    EXPECT_EQ(found[0].identity, second.identity);
    EXPECT_EQ(found[1].trashedPath, first.trashedPath);
    EXPECT_TRUE(restoreFromTrash(found[0]).done());
    EXPECT_EQ(contentOf(path), "second");
    EXPECT_EQ(find(path).size(), 1u);
}

TEST_F(TrashSearch, FindsNothingWhereNothingWasTrashed) {
    EXPECT_TRUE(find(sandbox / "one").empty());
    trash(sandbox.makeFile("one"));
    EXPECT_TRUE(find(sandbox / "on").empty());
    EXPECT_TRUE(find("").empty());
}

TEST_F(TrashSearch, FindsItemsOfAFolderThatIsGoneOrReachedByALink) {
    std::string path = sandbox.makeFile("folder/one");
    trash(path);
    fs::create_directory_symlink(sandbox / "folder", sandbox / "link");
    EXPECT_EQ(find(sandbox / "link/one").size(), 1u);
    fs::remove(sandbox / "folder");
    EXPECT_EQ(find(path).size(), 1u);
    EXPECT_EQ(find(path + "/").size(), 1u);
}

TEST_F(TrashSearch, FindsItemsOfAnotherDisk) {
    MountedImage disk(sandbox);
    writeFile(disk / "one", "on disk");
    trash(disk / "one");
    auto found = find(disk / "one");
    ASSERT_EQ(found.size(), 1u);
    EXPECT_TRUE(restoreFromTrash(found[0]).done());
    EXPECT_EQ(contentOf(disk / "one"), "on disk");
}

TEST_F(TrashSearch, FindsWhatOtherToolsHaveTrashed) {
    std::string path = sandbox.makeFile("\xC3\xA4 one", "theirs");
    run("XDG_DATA_HOME=" + (sandbox / "data") + " trash-put '" + path + "' 2>&1");
    ASSERT_FALSE(exists(path));
    auto found = find(path);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_TRUE(restoreFromTrash(found[0]).done());
    EXPECT_EQ(contentOf(path), "theirs");
}

TEST_F(TrashSearch, LeavesOutWhatHasLeftTheTrashAndOddInfoFiles) {
    std::string path = sandbox.makeFile("one");
    fs::remove(trash(path).trashedPath);
    const std::string info = "[Trash Info]\nPath=" + path + "\n";
    fs::create_directories(sandbox / "data/Trash/info/folder.trashinfo");
    writeFile(sandbox / "data/Trash/info/no-suffix", info);
    fs::create_symlink("/dev/zero", sandbox / "data/Trash/info/endless.trashinfo");
    EXPECT_TRUE(find(path).empty());
}

TEST_F(TrashSearch, DoesNotTrustATrashOnADiskThatIsALink) {
    MountedImage disk(sandbox);
    writeFile(disk / "one", "on disk");
    trash(disk / "one");
    const std::string own = disk / (".Trash-" + std::to_string(getuid()));
    fs::rename(own, disk / "elsewhere");
    fs::create_directory_symlink("elsewhere", own);
    EXPECT_TRUE(find(disk / "one").empty());
}

}  // namespace
