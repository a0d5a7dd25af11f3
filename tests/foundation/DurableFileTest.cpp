// SPDX-License-Identifier: MIT
#include "ula/foundation/filesystem/DurableFile.h"

#include "tests/support/TemporaryFolder.h"

#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tav::filesystem {
namespace {

namespace fs = std::filesystem;
using test::readFile;
using test::writeFile;
using testing::ElementsAre;
using testing::IsEmpty;

class DurableFileTest : public testing::Test {
protected:
    bool replace(const std::string& target, std::string_view bytes,
                 DurableFileOptions options = {}) {
        return replaceFileDurably(String(target), bytes, options, &error);
    }
    static mode_t modeOf(const std::string& path) {
        struct stat facts {};
        EXPECT_EQ(stat(path.c_str(), &facts), 0);
        return facts.st_mode & 07777;
    }
    /// Runs in a child as a user who may do nothing special; true when `act` was.
    template <class Act>
    bool asNobody(Act act) {
        const pid_t child = fork();
        if (child == 0)
            _exit(setgid(65534) == 0 && setuid(65534) == 0 && act() ? 0 : 1);
        int status = 1;
        return waitpid(child, &status, 0) == child && status == 0;
    }

    test::TemporaryFolder folder;
    std::string path = folder / "file";
    std::string error;
};

TEST_F(DurableFileTest, MakesAFileThatWasNotThere) {
    const mode_t before = umask(027);
    EXPECT_TRUE(replace(path, "new"));
    umask(before);
    EXPECT_EQ(readFile(path), "new");
    EXPECT_EQ(modeOf(path), 0640U);
    EXPECT_THAT(folder.names(), ElementsAre("file"));
}

TEST_F(DurableFileTest, ReplacesAFileAndKeepsItsPermissionsAndOwner) {
    writeFile(path, "old");
    ASSERT_EQ(chmod(path.c_str(), 0604), 0);
    ASSERT_EQ(chown(path.c_str(), 1234, 1235), 0);
    EXPECT_TRUE(replace(path, "new"));
    EXPECT_EQ(readFile(path), "new");
    EXPECT_EQ(modeOf(path), 0604U);
    struct stat facts {};
    ASSERT_EQ(stat(path.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_uid, 1234U);
    EXPECT_EQ(facts.st_gid, 1235U);
    EXPECT_THAT(folder.names(), ElementsAre("file"));
}

TEST_F(DurableFileTest, WhatIsWrittenInPiecesArrivesInOrder) {
    DurableFile file{String(path)};
    EXPECT_TRUE(file.write("a"));
    EXPECT_TRUE(file.write(""));
    EXPECT_TRUE(file.write(std::string(1 << 20, 'b')));
    EXPECT_THAT(folder.names(), IsEmpty());
    EXPECT_TRUE(file.commit());
    EXPECT_EQ(readFile(path), "a" + std::string(1 << 20, 'b'));
}

TEST_F(DurableFileTest, WithoutCommitNothingChanges) {
    writeFile(path, "old");
    {
        DurableFile file{String(path)};
        EXPECT_TRUE(file.write("new"));
    }
    EXPECT_EQ(readFile(path), "old");
    EXPECT_THAT(folder.names(), ElementsAre("file"));
}

TEST_F(DurableFileTest, OfALinkTheTargetIsReplaced) {
    fs::create_directory(folder / "sub");
    writeFile(folder / "sub/real", "old");
    fs::create_symlink("sub/second", path);
    fs::create_symlink("real", folder / "sub/second");
    EXPECT_TRUE(replace(path, "new"));
    EXPECT_TRUE(fs::is_symlink(path));
    EXPECT_TRUE(fs::is_symlink(folder / "sub/second"));
    EXPECT_EQ(readFile(folder / "sub/real"), "new");
}

TEST_F(DurableFileTest, OfALinkToNothingTheTargetIsMade) {
    fs::create_symlink(folder / "target", path);
    EXPECT_TRUE(replace(path, "new"));
    EXPECT_TRUE(fs::is_symlink(path));
    EXPECT_EQ(readFile(folder / "target"), "new");
}

TEST_F(DurableFileTest, ALoopOfLinksIsAnError) {
    fs::create_symlink("file", path);
    EXPECT_FALSE(replace(path, "new"));
    EXPECT_EQ(error, "cannot write \"" + path + "\": Too many levels of symbolic links");
}

TEST_F(DurableFileTest, AMissingFolderAFolderAndNoPathAreErrors) {
    EXPECT_FALSE(replace(folder / "none/file", "x"));
    EXPECT_EQ(error, "cannot write \"" + (folder / "none/file") + "\": No such file or directory");
    EXPECT_FALSE(replace(folder.path().string(), "x"));
    EXPECT_THAT(error, testing::HasSubstr("Is a directory"));
    EXPECT_FALSE(replace(folder.path().string() + "/", "x"));
    EXPECT_FALSE(replace("", "x"));
    EXPECT_FALSE(replace(path + std::string("\0x", 2), "x"));
    EXPECT_FALSE(replace(path + "/below", "x"));
    EXPECT_THAT(folder.names(), IsEmpty());
}

TEST_F(DurableFileTest, APipeIsNotReplaced) {
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_FALSE(replace(path, "x"));
    EXPECT_TRUE(fs::is_fifo(path));
}

TEST_F(DurableFileTest, AWriteProtectedFileIsNotReplaced) {
    writeFile(path, "old");
    ASSERT_EQ(chmod(path.c_str(), 0444), 0);
    ASSERT_EQ(chmod(folder.path().c_str(), 0777), 0);
    EXPECT_TRUE(asNobody([&] {
        return !replace(path, "new") && error == "cannot write \"" + path + "\": Permission denied";
    }));
    EXPECT_EQ(readFile(path), "old");
}

TEST_F(DurableFileTest, AFolderThatMayNotBeChangedIsAnError) {
    ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
    EXPECT_TRUE(asNobody([&] { return !replace(path, "new"); }));
    EXPECT_THAT(folder.names(), IsEmpty());
}

TEST_F(DurableFileTest, TheLongestNameIsReplacedToo) {
    const std::string longest = folder / std::string(255, 'n');
    EXPECT_TRUE(replace(longest, "old"));
    EXPECT_TRUE(replace(longest, "new")) << error;
    EXPECT_EQ(readFile(longest), "new");
    EXPECT_EQ(folder.names().size(), 1U);
}

TEST_F(DurableFileTest, LeftoversOfAKilledProcessAreRemoved) {
    writeFile(path, "old");
    writeFile(folder / ".file.ula-new-1-1", "half");
    writeFile(folder / ".file.ula-old", "older");
    EXPECT_TRUE(replace(path, "new"));
    EXPECT_EQ(readFile(path), "new");
    EXPECT_THAT(folder.names(), ElementsAre("file"));
}

TEST_F(DurableFileTest, TheOldFileIsKeptWhenAskedFor) {
    EXPECT_TRUE(replace(path, "1", {true, "file.bak"}));
    EXPECT_THAT(folder.names(), ElementsAre("file"));
    EXPECT_TRUE(replace(path, "2", {true, "file.bak"}));
    EXPECT_TRUE(replace(path, "3", {false, "file.bak"}));
    EXPECT_EQ(readFile(path), "3");
    EXPECT_EQ(readFile(folder / "file.bak"), "2");
    EXPECT_THAT(folder.names(), ElementsAre("file", "file.bak"));
}

TEST_F(DurableFileTest, ARelativePathIsOfTheCurrentFolder) {
    const fs::path before = fs::current_path();
    fs::current_path(folder.path());
    EXPECT_TRUE(replace("file", "new"));
    EXPECT_TRUE(replace("./file", "newer"));
    fs::current_path(before);
    EXPECT_EQ(readFile(path), "newer");
}

TEST_F(DurableFileTest, OpenReadersKeepTheOldFile) {
    writeFile(path, "old");
    const int reader = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_TRUE(replace(path, "newer"));
    char bytes[8];
    EXPECT_EQ(read(reader, bytes, sizeof bytes), 3);
    close(reader);
}

TEST_F(DurableFileTest, NewFileReplacesNothing) {
    writeFile(path, "old");
    EXPECT_FALSE(replace(path, "new", {.onlyNew = true}));
    EXPECT_EQ(error, "cannot write \"" + path + "\": File exists");
    EXPECT_EQ(readFile(path), "old");
    EXPECT_TRUE(replace(folder / "other", "new", {.onlyNew = true}));
    EXPECT_THAT(folder.names(), ElementsAre("file", "other"));
}

TEST_F(DurableFileTest, NewFileIsNotWrittenThroughALink) {
    fs::create_symlink(folder / "elsewhere", path);
    EXPECT_FALSE(replace(path, "new", {.onlyNew = true}));
    EXPECT_THAT(folder.names(), ElementsAre("file"));
}

TEST_F(DurableFileTest, NewFileLeavesOneThatCameInTheMeantime) {
    DurableFile file(String(path), {.onlyNew = true});
    ASSERT_TRUE(file.write("new"));
    writeFile(path, "faster");
    EXPECT_FALSE(file.commit());
    EXPECT_TRUE(file.exists());
    EXPECT_EQ(readFile(path), "faster");
}

TEST_F(DurableFileTest, FileKeepsTheTimeItIsGiven) {
    ASSERT_TRUE(replace(path, "new", {.modificationTime = 1'000'000'000}));
    struct stat facts {};
    ASSERT_EQ(stat(path.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mtime, 1'000'000'000);
}

TEST_F(DurableFileTest, SeveralNewFilesAreCommittedTogether) {
    fs::create_directory(folder / "sub");
    writeFile(folder / "taken", "old");
    DurableFile first(String(path), {.onlyNew = true});
    DurableFile second(String(folder / "sub/file"), {.onlyNew = true});
    DurableFile taken(String(folder / "taken"), {.onlyNew = true});
    ASSERT_TRUE(first.write("1") && second.write("2"));
    EXPECT_FALSE(taken.write("3"));
    EXPECT_THAT(folder.names(), ElementsAre("sub", "taken"));
    DurableFile::commitTogether({&first, &taken, &second});
    EXPECT_TRUE(first.isCommitted() && second.isCommitted());
    EXPECT_FALSE(taken.isCommitted());
    EXPECT_TRUE(taken.exists());
    EXPECT_EQ(readFile(path) + readFile(folder / "sub/file") + readFile(folder / "taken"), "12old");
}

}  // namespace
}  // namespace tav::filesystem
