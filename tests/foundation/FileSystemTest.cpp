// SPDX-License-Identifier: MIT
#include "ula/foundation/filesystem/FileSystem.h"

#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace tav::filesystem {
namespace {

class FileSystemTest : public testing::Test {
protected:
    FileSystemTest() {
        test::writeFile(folder / "file", "x");
        std::filesystem::create_directory(folder / "folder");
        std::filesystem::create_symlink("folder", folder / "link");
        std::filesystem::create_symlink("nowhere", folder / "dangling");
    }
    String at(const char* name) const { return String(folder / name); }

    test::TemporaryFolder folder;
};

TEST_F(FileSystemTest, TellsWhatIsThere) {
    EXPECT_TRUE(exists(at("file")));
    EXPECT_TRUE(isRegularFile(at("file")));
    EXPECT_FALSE(isDirectory(at("file")));
    EXPECT_TRUE(isDirectory(at("folder")));
    EXPECT_FALSE(isRegularFile(at("folder")));
    EXPECT_FALSE(exists(at("none")));
}

TEST_F(FileSystemTest, FollowsLinks) {
    EXPECT_TRUE(isDirectory(at("link")));
    EXPECT_FALSE(exists(at("dangling")));
}

TEST_F(FileSystemTest, APathWithAZeroInItDoesNotExist) {
    const std::string path = (folder / "file") + std::string("\0x", 2);
    EXPECT_FALSE(exists(String(path)));
}

TEST_F(FileSystemTest, APartOfAStringIsAPathOfItsOwn) {
    const String longer(folder / "file-and-more");
    EXPECT_TRUE(exists(longer.substr(0, longer.length() - 9)));
}

TEST_F(FileSystemTest, AnswersOnZeroTerminatedPathsToo) {
    EXPECT_TRUE(File::exists((folder / "file").c_str()));
    EXPECT_TRUE(File::isDirectory((folder / "folder").c_str()));
    EXPECT_FALSE(File::isDirectory((folder / "file").c_str()));
    EXPECT_FALSE(File::exists(nullptr));
}

TEST_F(FileSystemTest, FolderNameIsTheFolderItselfOrTheOneThatHoldsTheFile) {
    EXPECT_EQ(folderName(at("folder/")), at("folder"));
    EXPECT_EQ(folderName(at("folder")), at("folder"));
    EXPECT_EQ(folderName(at("file")), String(folder.path().string()));
}

TEST(PathTest, LeafIsTheLastComponent) {
    EXPECT_EQ(leaf("/a/b/c"), "c");
    EXPECT_EQ(leaf("/a/b/c/"), "c");
    EXPECT_EQ(leaf("c"), "c");
    EXPECT_EQ(leaf("/"), "/");
    EXPECT_EQ(leaf("//"), "/");
    EXPECT_EQ(leaf(""), "");
}

TEST(PathTest, ParentPathIsThePathWithoutIt) {
    EXPECT_EQ(parentPath("/a/b/c"), "/a/b");
    EXPECT_EQ(parentPath("/a/b/c//"), "/a/b");
    EXPECT_EQ(parentPath("/a"), "/");
    EXPECT_EQ(parentPath("/"), "/");
    EXPECT_EQ(parentPath("a"), "");
    EXPECT_EQ(parentPath(""), "");
}

}  // namespace
}  // namespace tav::filesystem
