// SPDX-License-Identifier: MIT
#include "ImageCapture/CardFolder.h"

#include "ImageCapture/ICAApplication.h"
#include "tests/support/TemporaryFolder.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;
using namespace imagecapture;
using tav::test::TemporaryFolder;
using tav::test::writeFile;
using testing::ElementsAre;

class CardFolders : public testing::Test {
protected:
    static fs::path made(const fs::path& path) {
        fs::create_directories(path / "100TEST");
        return path;
    }
    std::vector<std::string> names(const std::string& path) {
        std::vector<Item> items;
        EXPECT_EQ(card.list(path, items), 0) << card.problem();
        std::vector<std::string> result;
        for (const Item& item : items)
            result.push_back(item.name + (item.isFolder ? "/" : ""));
        return result;
    }
    std::string read(const std::string& name, uint64_t offset, size_t size) {
        std::string memory(size, '-');
        std::span<char> bytes(memory);
        EXPECT_EQ(card.read("100TEST", {name, false, 0, 0}, offset, bytes), 0);
        return std::string(bytes.begin(), bytes.end());
    }

    TemporaryFolder folder;
    fs::path dcim = made(folder.path() / "DCIM");
    CardFolder card{dcim.string()};
};

TEST_F(CardFolders, FilesAndFoldersAreListedByName) {
    fs::create_directory(dcim / "100TEST/sub");
    for (const char* name : {"b.jpg", "a.jpg", "C.MOV"})
        writeFile((dcim / "100TEST" / name).string(), "x");
    EXPECT_THAT(names(""), ElementsAre("100TEST/"));
    EXPECT_THAT(names("100TEST"), ElementsAre("C.MOV", "a.jpg", "b.jpg", "sub/"));
}

TEST_F(CardFolders, SizesAndDatesAreThoseOfTheFiles) {
    writeFile((dcim / "100TEST/a.jpg").string(), "12345");
    timespec times[2] = {{1'000'000'000, 0}, {1'000'000'000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, (dcim / "100TEST/a.jpg").c_str(), times, 0), 0);
    std::vector<Item> items;
    ASSERT_EQ(card.list("100TEST", items), 0);
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0].size, 5u);
    EXPECT_EQ(items[0].modified, 1'000'000'000);
}

TEST_F(CardFolders, HiddenFilesLinksAndPipesAreNoPictures) {
    writeFile(folder / "secret", "x");
    writeFile((dcim / "100TEST/._a.jpg").string(), "x");
    fs::create_symlink(folder / "secret", dcim / "100TEST/link.jpg");
    fs::create_directory_symlink(folder.path(), dcim / "200LINK");
    ASSERT_EQ(mkfifo((dcim / "100TEST/pipe.jpg").c_str(), 0600), 0);
    EXPECT_THAT(names("100TEST"), ElementsAre());
    EXPECT_THAT(names(""), ElementsAre("100TEST/"));
}

TEST_F(CardFolders, NothingOutsideIsRead) {
    writeFile(folder / "secret", "x");
    fs::create_symlink(folder / "secret", dcim / "100TEST/link.jpg");
    std::string memory(10, '-');
    std::span<char> bytes(memory);
    for (const char* name : {"link.jpg", "../../secret", "/etc/passwd"})
        EXPECT_NE(card.read("100TEST", {name, false, 1, 0}, 0, bytes), 0) << name;
    std::vector<Item> items;
    EXPECT_NE(card.list("..", items), 0);
    EXPECT_NE(card.list("/etc", items), 0);
}

TEST_F(CardFolders, PartsOfFilesAreRead) {
    writeFile((dcim / "100TEST/a.jpg").string(), "0123456789");
    EXPECT_EQ(read("a.jpg", 0, 4), "0123");
    EXPECT_EQ(read("a.jpg", 8, 4), "89");
    EXPECT_EQ(read("a.jpg", 20, 4), "");
}

TEST_F(CardFolders, WholeFilesAreCopied) {
    const std::string bytes(3'000'000, 'x');
    writeFile((dcim / "100TEST/a.jpg").string(), bytes);
    cf::Descriptor target(open((folder / "copy").c_str(), O_RDWR | O_CREAT, 0600));
    ASSERT_EQ(card.copy("100TEST", {"a.jpg", false, bytes.size(), 0}, target.get()), 0);
    EXPECT_TRUE(tav::test::readFile(folder / "copy") == bytes);
}

TEST_F(CardFolders, FullDiskIsToldAsSuch) {
    writeFile((dcim / "100TEST/a.jpg").string(), "x");
    cf::Descriptor full(open("/dev/full", O_WRONLY | O_CLOEXEC));
    EXPECT_EQ(card.copy("100TEST", {"a.jpg", false, 1, 0}, full.get()), dskFulErr);
    EXPECT_NE(card.problem(), "");
}

TEST_F(CardFolders, FileThatHasGoneIsNotFound) {
    std::string memory(10, '-');
    std::span<char> bytes(memory);
    EXPECT_EQ(card.read("100TEST", {"a.jpg", false, 1, 0}, 0, bytes), fnfErr);
}

TEST_F(CardFolders, CardThatHasGoneDoesNotAnswer) {
    fs::remove_all(dcim);
    std::vector<Item> items;
    EXPECT_EQ(card.list("", items), kICACommunicationErr);
    EXPECT_EQ(card.problem(), "cannot read \"" + dcim.string() + "\": No such device");
}

}  // namespace
