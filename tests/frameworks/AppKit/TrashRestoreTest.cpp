// SPDX-License-Identifier: MIT
#include "AppKit/MoveItem.h"
#include "AppKit/Trash.h"
#include "AppKit/TrashInfo.h"
#include "Sandbox.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

using namespace appkit;
using namespace trashtest;

class RestoreTest : public testing::Test {
protected:
    TrashReceipt trashed(const std::string& name, const std::string& content) {
        TrashOutcome outcome = moveToTrash(sandbox.makeFile(name, content), sandbox.places());
        EXPECT_TRUE(outcome.done()) << outcome.explanation();
        return outcome.receipt;
    }

    Sandbox sandbox;
};

TEST_F(RestoreTest, AnItemComesBackAndItsInfoFileGoes) {
    TrashReceipt receipt = trashed("one", "mine");
    EXPECT_TRUE(restoreFromTrash(receipt).done());
    EXPECT_EQ(contentOf(sandbox / "one"), "mine");
    EXPECT_EQ(namesIn(sandbox / "data/Trash/info"), std::vector<std::string>());
}

TEST_F(RestoreTest, FoldersThatHaveGoneAreMadeAgain) {
    TrashReceipt receipt = trashed("a/b/c/one", "mine");
    std::filesystem::remove_all(sandbox / "a");
    EXPECT_TRUE(restoreFromTrash(receipt).done());
    EXPECT_EQ(contentOf(sandbox / "a/b/c/one"), "mine");
}

TEST_F(RestoreTest, WhatHasTakenTheItemsPlaceStays) {
    TrashReceipt receipt = trashed("one", "mine");
    auto expectTaken = [&] {
        EXPECT_EQ(restoreFromTrash(receipt).status, TrashStatus::PlaceTaken);
        EXPECT_EQ(contentOf(receipt.trashedPath), "mine");
        EXPECT_TRUE(exists(receipt.infoPath));
    };
    sandbox.makeFile("one", "newer");
    expectTaken();
    EXPECT_EQ(contentOf(sandbox / "one"), "newer");
    unlink((sandbox / "one").c_str());
    std::filesystem::create_directory(sandbox / "one");
    expectTaken();
    std::filesystem::remove(sandbox / "one");
    std::filesystem::create_symlink("nothing", sandbox / "one");
    expectTaken();
}

TEST_F(RestoreTest, AnEmptiedTrashIsReportedAsMissing) {
    TrashReceipt receipt = trashed("one", "mine");
    std::filesystem::remove_all(sandbox / "data");
    EXPECT_EQ(restoreFromTrash(receipt).status, TrashStatus::Missing);
    EXPECT_EQ(restoreFromTrash({}).status, TrashStatus::Missing);
}

TEST_F(RestoreTest, AnotherItemOfTheSameNameInTheTrashIsNotTakenForIt) {
    TrashReceipt receipt = trashed("one", "mine");
    unlink(receipt.trashedPath.c_str());
    writeFile(receipt.trashedPath, "another's");
    EXPECT_EQ(restoreFromTrash(receipt).status, TrashStatus::ItemChanged);
    EXPECT_FALSE(exists(sandbox / "one"));
}

TEST_F(RestoreTest, AnItemIsRestoredOnce) {
    TrashReceipt receipt = trashed("one", "mine");
    EXPECT_TRUE(restoreFromTrash(receipt).done());
    EXPECT_EQ(restoreFromTrash(receipt).status, TrashStatus::Missing);
    EXPECT_EQ(contentOf(sandbox / "one"), "mine");
}

TEST_F(RestoreTest, APlaceholderMovesFilesFoldersAndLinksWithoutReplacing) {
    int folder = open(sandbox.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    sandbox.makeFile("file", "f");
    sandbox.makeFile("folder/inner", "i");
    std::filesystem::create_symlink("nothing", sandbox / "link");
    for (const char* name : {"file", "folder", "link"}) {
        std::string to = std::string("new ") + name;
        EXPECT_EQ(moveOverPlaceholder({folder, name}, {folder, to}), 0);
        EXPECT_TRUE(exists(sandbox / to));
        EXPECT_FALSE(exists(sandbox / name));
    }
    sandbox.makeFile("file", "second");
    EXPECT_EQ(moveOverPlaceholder({folder, "file"}, {folder, "new file"}), EEXIST);
    EXPECT_EQ(contentOf(sandbox / "new file"), "f");
    EXPECT_EQ(moveOverPlaceholder({folder, "absent"}, {folder, "other"}), ENOENT);
    EXPECT_FALSE(exists(sandbox / "other"));
    close(folder);
}

TEST_F(RestoreTest, AFolderIsNotMovedIntoItself) {
    sandbox.makeFile("folder/inner/file");
    int folder = open(sandbox.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    EXPECT_NE(moveWithoutReplacing({folder, "folder"}, {folder, "folder/inner/folder"}), 0);
    EXPECT_EQ(namesIn(sandbox / "folder/inner"), std::vector<std::string>{"file"});
    close(folder);
}

TEST(TrashName, KeepsTheExtensionAndFits) {
    EXPECT_EQ(trashName("a.jpg", 0, 255), "a.jpg");
    EXPECT_EQ(trashName("a.jpg", 1, 255), "a 2.jpg");
    EXPECT_EQ(trashName(".profile", 2, 255), ".profile 3");
    EXPECT_EQ(trashName("a.tar.gz", 1, 255), "a.tar 2.gz");
    EXPECT_EQ(trashName(std::string(255, 'x'), 0, 255), std::string(245, 'x'));
    EXPECT_EQ(trashName(std::string(251, 'x') + ".jpg", 1, 255), std::string(239, 'x') + " 2.jpg");
    EXPECT_NE(trashName("a", 500, 255), trashName("a", 500, 255));
}

TEST(TrashName, CutsBetweenCharacters) {
    std::string name;
    for (int i = 0; i < 85; ++i)
        name += "\xE5\x86\x99";
    EXPECT_EQ(trashName(name, 0, 255).size(), 243u);
}

}  // namespace
