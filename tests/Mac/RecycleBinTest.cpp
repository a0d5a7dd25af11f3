// SPDX-License-Identifier: MIT
#include "ula/RecycleBin.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <unistd.h>

namespace tav::ula {
namespace {

namespace fs = std::filesystem;
using test::readFile;
using test::TemporaryFolder;
using test::writeFile;
using testing::IsEmpty;
using Results = std::vector<RecycleBinResult>;

class RecycleBin : public testing::Test {
protected:
    RecycleBin() { setenv("XDG_DATA_HOME", (folder / "data").c_str(), 1); }

    FastString makeFile(const std::string& name, const std::string& text = "text") {
        fs::create_directories(fs::path(folder / name).parent_path());
        writeFile(folder / name, text);
        return FastString(folder / name);
    }
    FastString path(const std::string& name) const { return FastString(folder / name); }
    /// Of the item itself, be it a link to nothing.
    bool isThere(const std::string& name) const {
        return fs::symlink_status(folder / name).type() != fs::file_type::not_found;
    }
    bool isTrashed(const std::string& name) const { return isThere("data/Trash/files/" + name); }

    RecycleBinReceipt trash(const FastString& item) {
        Results results;
        EXPECT_TRUE(moveToRecycleBin({item}, results));
        return results.at(0).receipt;
    }

    TemporaryFolder folder;
};

TEST_F(RecycleBin, FileGoesToTheTrash) {
    EXPECT_TRUE(moveToRecycleBin(makeFile("Gr\u00fcn.txt")));
    EXPECT_FALSE(isThere("Gr\u00fcn.txt"));
    EXPECT_TRUE(isTrashed("Gr\u00fcn.txt"));
}

TEST_F(RecycleBin, FolderGoesToTheTrashWithAllThatIsInIt) {
    makeFile("folder/inner");
    EXPECT_TRUE(moveToRecycleBin(path("folder")));
    EXPECT_FALSE(isThere("folder"));
    EXPECT_TRUE(isTrashed("folder/inner"));
}

TEST_F(RecycleBin, FolderWithASlashAtItsEndGoesToTheTrash) {
    makeFile("folder/inner");
    EXPECT_TRUE(moveToRecycleBin(path("folder/")));
    EXPECT_TRUE(isTrashed("folder/inner"));
}

TEST_F(RecycleBin, LinkGoesItselfAndNotWhatItLeadsTo) {
    makeFile("file");
    fs::create_symlink(folder / "file", folder / "link");
    EXPECT_TRUE(moveToRecycleBin(path("link")));
    EXPECT_TRUE(isTrashed("link"));
    EXPECT_TRUE(isThere("file"));
}

TEST_F(RecycleBin, WhatIsNeitherFileNorFolderIsRefused) {
    fs::create_symlink("nowhere", folder / "stale");
    EXPECT_FALSE(moveToRecycleBin(path("missing")));
    EXPECT_FALSE(moveToRecycleBin(path("stale")));
    EXPECT_FALSE(moveToRecycleBin(FastString()));
    EXPECT_TRUE(isThere("stale"));
}

TEST_F(RecycleBin, TheOtherArgumentsAreIgnored) {
    int something = 0;
    EXPECT_TRUE(moveToRecycleBin(makeFile("one"), true, true, &something));
    EXPECT_TRUE(moveToRecycleBin({makeFile("two"), makeFile("three")}, true, false, &something));
    EXPECT_TRUE(isTrashed("one"));
    EXPECT_TRUE(isTrashed("two"));
}

TEST_F(RecycleBin, EmptyListIsTrue) {
    EXPECT_TRUE(moveToRecycleBin(std::vector<FastString>()));
    Results results{{}};
    EXPECT_TRUE(moveToRecycleBin({}, results));
    EXPECT_THAT(results, IsEmpty());
}

TEST_F(RecycleBin, ListWithOneMissingTrashesTheOthersAndIsFalse) {
    EXPECT_FALSE(moveToRecycleBin({makeFile("one"), path("missing"), makeFile("two")}));
    EXPECT_TRUE(isTrashed("one"));
    EXPECT_TRUE(isTrashed("two"));
}

TEST_F(RecycleBin, ReceiptsTellWhereEachItemWentAndWhyOneDidNot) {
    Results results;
    EXPECT_FALSE(
        moveToRecycleBin({makeFile("a/same"), path("missing"), makeFile("b/same")}, results));
    ASSERT_EQ(results.size(), 3u);
    EXPECT_TRUE(results[0].done);
    EXPECT_EQ(results[0].receipt.originalPath, path("a/same"));
    EXPECT_EQ(results[0].receipt.trashedPath, path("data/Trash/files/same"));
    EXPECT_EQ(results[0].error, "");
    EXPECT_FALSE(results[1].done);
    EXPECT_EQ(results[1].receipt.originalPath, path("missing"));
    EXPECT_EQ(results[1].error, "there is no such file or folder");
    EXPECT_NE(results[2].receipt.trashedPath, results[0].receipt.trashedPath);
    EXPECT_EQ(readFile(results[2].receipt.trashedPath.toStdString()), "text");
}

TEST_F(RecycleBin, RestoredItemIsWhereItWasAndLeavesNothingInTheTrash) {
    const RecycleBinReceipt receipt = trash(makeFile("folder/file", "kept"));
    fs::remove(folder / "folder");
    const RecycleBinResult result = restoreFromRecycleBin(receipt);
    EXPECT_TRUE(result.done);
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(readFile(folder / "folder/file"), "kept");
    EXPECT_TRUE(fs::is_empty(folder / "data/Trash/files"));
    EXPECT_TRUE(fs::is_empty(folder / "data/Trash/info"));
}

TEST_F(RecycleBin, WhatHasTakenTheItemsPlaceStays) {
    const RecycleBinReceipt receipt = trash(makeFile("file", "old"));
    makeFile("file", "new");
    const RecycleBinResult result = restoreFromRecycleBin(receipt);
    EXPECT_FALSE(result.done);
    EXPECT_THAT(result.error.toStdString(), testing::Not(IsEmpty()));
    EXPECT_EQ(readFile(folder / "file"), "new");
    EXPECT_EQ(readFile(receipt.trashedPath.toStdString()), "old");
}

TEST_F(RecycleBin, ReceiptsOfAPlaceAreFoundTheLastTrashedFirst) {
    trash(makeFile("file", "first"));
    trash(makeFile("other"));
    const RecycleBinReceipt last = trash(makeFile("file", "second"));
    const std::vector<RecycleBinReceipt> found = findInRecycleBin(path("file"));
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].originalPath, last.originalPath);
    EXPECT_EQ(found[0].trashedPath, last.trashedPath);
    EXPECT_EQ(found[0].identity, last.identity);
    EXPECT_TRUE(restoreFromRecycleBin(found[0]).done);
    EXPECT_EQ(readFile(folder / "file"), "second");
    EXPECT_THAT(findInRecycleBin(path("none")), IsEmpty());
    EXPECT_THAT(findInRecycleBin(FastString()), IsEmpty());
}

TEST_F(RecycleBin, ItemThatHasLeftTheTrashIsNotRestored) {
    const RecycleBinReceipt receipt = trash(makeFile("file"));
    fs::remove(receipt.trashedPath.toStdString());
    EXPECT_EQ(restoreFromRecycleBin(receipt).error, "the item has left the trash");
    EXPECT_EQ(restoreFromRecycleBin({}).error, "the receipt tells of no item");
}

TEST_F(RecycleBin, AnotherItemOfTheNameIsNotRestoredForIt) {
    const RecycleBinReceipt receipt = trash(makeFile("file"));
    makeFile("other");
    fs::rename(folder / "other", receipt.trashedPath.toStdString());
    EXPECT_EQ(restoreFromRecycleBin(receipt).error, "another item has its name in the trash");
    EXPECT_FALSE(isThere("file"));
}

/// File systems use the number of a removed item again for the next one.
TEST_F(RecycleBin, LaterItemOfTheSameNameAndNumberIsNotRestoredForIt) {
    const RecycleBinReceipt first = trash(makeFile("file", "first"));
    fs::remove_all(folder / "data/Trash");
    const RecycleBinReceipt second = trash(makeFile("file", "second"));
    ASSERT_EQ(second.trashedPath, first.trashedPath);
    EXPECT_EQ(restoreFromRecycleBin(first).error, "another item has its name in the trash");
    EXPECT_TRUE(restoreFromRecycleBin(second).done);
    EXPECT_EQ(readFile(folder / "file"), "second");
}

TEST_F(RecycleBin, NamesWithEveryKindOfCharacterGoAndComeBack) {
    for (const char* name : {"100% #1?;x&y=.txt", "a:b\\c", "  blanks  ", "Gru\u0308n \u5199",
                             "%41", "new\nline", "-", "~", "*"}) {
        const RecycleBinReceipt receipt = trash(makeFile(name, name));
        EXPECT_FALSE(isThere(name)) << name;
        EXPECT_EQ(receipt.originalPath, path(name));
        EXPECT_EQ(restoreFromRecycleBin(receipt).error, "") << name;
        EXPECT_EQ(readFile(folder / name), name);
    }
}

TEST_F(RecycleBin, FolderWithASlashAtItsEndComesBack) {
    makeFile("folder/inner");
    const RecycleBinReceipt receipt = trash(path("folder/"));
    EXPECT_EQ(receipt.originalPath, path("folder"));
    EXPECT_TRUE(restoreFromRecycleBin(receipt).done);
    EXPECT_TRUE(isThere("folder/inner"));
}

/// Of "/" and its items nothing must ever go by such a path.
TEST_F(RecycleBin, RelativePathIsOneOfTheWorkingFolder) {
    makeFile("first", "text");
    makeFile("second", "text");
    fs::current_path(folder.path());
    EXPECT_TRUE(moveToRecycleBin(FastString("first")));
    EXPECT_TRUE(isTrashed("first"));
    const RecycleBinReceipt receipt = trash(FastString("second"));
    fs::current_path("/");
    EXPECT_EQ(receipt.originalPath, path("second"));
    EXPECT_TRUE(restoreFromRecycleBin(receipt).done);
    EXPECT_TRUE(isThere("second"));
}

TEST_F(RecycleBin, NameThatIsNoTextIsRefusedAndStays) {
    const FastString file = makeFile("bad \xff name");
    EXPECT_FALSE(moveToRecycleBin(file));
    Results results;
    EXPECT_FALSE(moveToRecycleBin({file}, results));
    EXPECT_EQ(results.at(0).error, "its path is no text in UTF-8");
    EXPECT_TRUE(isThere("bad \xff name"));
}

TEST_F(RecycleBin, ItemOfTheTrashIsRefusedAndToldWhy) {
    const RecycleBinReceipt receipt = trash(makeFile("file"));
    Results results;
    EXPECT_FALSE(moveToRecycleBin({receipt.trashedPath}, results));
    EXPECT_EQ(results.at(0).error, "it belongs to the trash");
    EXPECT_TRUE(isTrashed("file"));
}

TEST_F(RecycleBin, ItemOfAFolderThatMayNotBeChangedStaysAndIsToldWhy) {
    const FastString file = makeFile("locked/file");
    fs::permissions(folder.path(), static_cast<fs::perms>(0755));
    constexpr uid_t kNobody = 65534;
    fs::create_directory(folder / "own");
    ASSERT_EQ(chown((folder / "own").c_str(), kNobody, kNobody), 0);
    const std::string error = test::runInChild([&] {
        setenv("XDG_DATA_HOME", (folder / "own").c_str(), 1);
        Results results;
        if (setuid(kNobody) != 0 || moveToRecycleBin({file}, results))
            return std::string();
        return results.at(0).error.toStdString();
    });
    EXPECT_THAT(error, testing::HasSubstr("may not be changed"));
    EXPECT_TRUE(isThere("locked/file"));
}

}  // namespace
}  // namespace tav::ula
