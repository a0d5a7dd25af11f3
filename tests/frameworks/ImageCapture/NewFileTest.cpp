// SPDX-License-Identifier: MIT
#include "ImageCapture/NewFile.h"

#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

using imagecapture::NewFile;
using tav::test::TemporaryFolder;

class NewFiles : public testing::Test {
protected:
    void fill(NewFile& file, const std::string& text) {
        ASSERT_EQ(write(file.descriptor(), text.data(), text.size()),
                  static_cast<ssize_t>(text.size()));
    }

    TemporaryFolder folder;
};

TEST_F(NewFiles, HasItsNameOnlyWhenItIsComplete) {
    NewFile file(folder.path().string(), "a.jpg");
    ASSERT_EQ(file.error(), 0);
    fill(file, "picture");
    EXPECT_THAT(folder.names(), testing::IsEmpty());
    ASSERT_TRUE(file.publish());
    EXPECT_EQ(tav::test::readFile(folder / "a.jpg"), "picture");
}

TEST_F(NewFiles, NothingIsLeftOfOneThatWasGivenUp) {
    {
        NewFile file(folder.path().string(), "a.jpg");
        fill(file, "half");
    }
    EXPECT_THAT(folder.names(), testing::IsEmpty());
}

TEST_F(NewFiles, OneThatIsThereStays) {
    tav::test::writeFile(folder / "a.jpg", "old");
    EXPECT_EQ(NewFile(folder.path().string(), "a.jpg").error(), EEXIST);
    EXPECT_EQ(tav::test::readFile(folder / "a.jpg"), "old");
}

TEST_F(NewFiles, OneThatCameInTheMeantimeStays) {
    NewFile file(folder.path().string(), "a.jpg");
    fill(file, "new");
    tav::test::writeFile(folder / "a.jpg", "faster");
    EXPECT_FALSE(file.publish());
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(tav::test::readFile(folder / "a.jpg"), "faster");
}

TEST_F(NewFiles, LinkThatLeadsNowhereIsNotWrittenThrough) {
    std::filesystem::create_symlink(folder / "elsewhere", folder / "a.jpg");
    EXPECT_EQ(NewFile(folder.path().string(), "a.jpg").error(), EEXIST);
    EXPECT_FALSE(std::filesystem::exists(folder / "elsewhere"));
}

TEST_F(NewFiles, KeepsTheDateItIsGiven) {
    NewFile file(folder.path().string(), "a.jpg");
    fill(file, "picture");
    ASSERT_TRUE(file.setModified(1'000'000'000) && file.publish());
    struct stat info {};
    ASSERT_EQ(stat((folder / "a.jpg").c_str(), &info), 0);
    EXPECT_EQ(info.st_mtime, 1'000'000'000);
}

TEST_F(NewFiles, FolderThatIsNotThereIsAnError) {
    EXPECT_EQ(NewFile(folder / "none", "a.jpg").error(), ENOENT);
}

}  // namespace
