// SPDX-License-Identifier: MIT
#include "CoreServices/AliasFile.h"
#include "AliasBytes.h"
#include "tests/support/TemporaryFolder.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

using namespace coreservices;
using namespace aliastest;
using tav::test::TemporaryFolder;
using tav::test::writeFile;
namespace fs = std::filesystem;

const std::string kLink = "[Desktop Entry]\nType=Link\nURL=/\n";

std::string folderRecord() {
    RecordFields fields;
    fields.volumeName = "Disk";
    fields.values = {{18, "/a"}};
    return aliasRecord(fields);
}

TEST(MayBeAliasFile, LeavesOutOrdinaryFilesByTheirNames) {
    for (const char* name : {"a.jpg", "a.JPG", "IMG_0001.Cr2", "a.b.pdf", ".hidden.txt", "x.tiff",
                             "movie.mov", "notes.md", "archive.tar.gz", "._x"})
        EXPECT_FALSE(mayBeAliasFile(name, 1000)) << name;
}

TEST(MayBeAliasFile, TakesNamesThatAliasesMayHave) {
    for (const char* name : {"Photos alias", "Photos", "one.jpg alias", "Release 1.2", ".txt",
                             "a.longextension", "x.app", "", "\xFF", "x.desktop"})
        EXPECT_TRUE(mayBeAliasFile(name, 1000)) << name;
}

TEST(MayBeAliasFile, TakesSizesThatAliasesMayHave) {
    EXPECT_FALSE(mayBeAliasFile("Photos", 57));
    EXPECT_TRUE(mayBeAliasFile("Photos", 58));
    EXPECT_TRUE(mayBeAliasFile("Photos", 1 << 20));
    EXPECT_FALSE(mayBeAliasFile("Photos", (1 << 20) + 1));
    EXPECT_FALSE(mayBeAliasFile("x.desktop", 0));
    EXPECT_TRUE(mayBeAliasFile("x.desktop", 1));
    EXPECT_FALSE(mayBeAliasFile("x.desktop", uint64_t{1} << 40));
}

TEST(MayBeAliasFile, TakesEmptyFilesThatMayHaveACompanion) {
    EXPECT_TRUE(mayBeAliasFile("Photos", 0));
    EXPECT_FALSE(mayBeAliasFile("Photos", 0, Companion::Absent));
    EXPECT_FALSE(mayBeAliasFile("a.jpg", 0));
    EXPECT_TRUE(mayBeAliasFile("Photos", 100, Companion::Absent));
}

class AliasFileTest : public testing::Test {
protected:
    std::string write(const std::string& name, const std::string& bytes) {
        writeFile(folder / name, bytes);
        return folder / name;
    }

    TemporaryFolder folder;
};

TEST_F(AliasFileTest, IsALinkEntryOnlyWithTheRightName) {
    EXPECT_TRUE(isAliasFile(write("x.desktop", kLink)));
    EXPECT_FALSE(isAliasFile(write("x.txt", kLink)));
    EXPECT_FALSE(isAliasFile(write("x", kLink + std::string(100, '#'))));
    EXPECT_FALSE(isAliasFile(write("app.desktop", "[Desktop Entry]\nType=Application\n")));
}

TEST_F(AliasFileTest, IsALinkEntryWhateverComesBeforeItsType) {
    std::string names;
    for (int i = 0; i < 1000; ++i)
        names += "Name[l" + std::to_string(i) + "]=a name\n";
    EXPECT_TRUE(isAliasFile(write("x.desktop", "[Desktop Entry]\n" + names + kLink.substr(16))));
    EXPECT_FALSE(isAliasFile(write("large.desktop", kLink + std::string(1 << 20, '#'))));
}

TEST_F(AliasFileTest, IsABookmarkOrARecord) {
    BookmarkBytes bytes;
    std::string bookmark = bytes.path({"a"}).volume("/", "Disk").flags(2).file();
    EXPECT_TRUE(isAliasFile(write("Photos alias", bookmark)));
    EXPECT_TRUE(isAliasFile(write("Photos", bookmark + std::string(100'000, 'x'))));
    EXPECT_TRUE(isAliasFile(write("Old alias", folderRecord())));
    EXPECT_FALSE(isAliasFile(write("Longer", folderRecord() + "x")));
    EXPECT_FALSE(isAliasFile(write("Makefile", std::string(500, 'x'))));
    EXPECT_FALSE(isAliasFile(write("cut", bookmark.substr(0, 80))));
    EXPECT_FALSE(isAliasFile(write("photo.jpg", bookmark)));
}

TEST_F(AliasFileTest, IsAnEmptyFileWithARecordInItsCompanion) {
    std::string path = write("Photos", "");
    EXPECT_FALSE(isAliasFile(path));
    std::string fork = resourceFork("alis", folderRecord());
    write("._Photos", companion("fdrp", 0, fork));
    EXPECT_FALSE(isAliasFile(path)) << "the flag for the Finder is missing";
    write("._Photos", companion("fdrp", 0x8000, fork));
    EXPECT_TRUE(isAliasFile(path));
    write("._Photos", companion("fdrp", 0x8000, resourceFork("icns", folderRecord())));
    EXPECT_FALSE(isAliasFile(path));
}

TEST_F(AliasFileTest, TakesTheKindFromTheFindersNotes) {
    RecordFields fields;
    fields.kind = 0;
    fields.values = {{18, "/a"}};
    std::string path = write("x", "");
    auto kindWith = [&](const char* type) {
        write("._x", companion(type, 0x8000, resourceFork("alis", aliasRecord(fields))));
        return std::get<MacAlias>(readAliasFile(path).value()).kind;
    };
    EXPECT_EQ(kindWith("fdrp"), AliasKind::Folder);
    EXPECT_EQ(kindWith("hdsk"), AliasKind::Disk);
    EXPECT_EQ(kindWith("TEXT"), AliasKind::File);
}

TEST_F(AliasFileTest, IsNoFolderLinkOrMissingFile) {
    fs::create_directory(folder / "x.desktop");
    EXPECT_FALSE(isAliasFile(folder / "x.desktop"));
    write("real.desktop", kLink);
    fs::create_symlink("real.desktop", folder / "link.desktop");
    EXPECT_FALSE(isAliasFile(folder / "link.desktop"));
    EXPECT_FALSE(isAliasFile(folder / "missing.desktop"));
    EXPECT_FALSE(isAliasFile(""));
}

// Opening the fifo for reading would let the writer go on.
TEST_F(AliasFileTest, DoesNotOpenFifos) {
    std::string path = folder / "x.desktop";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_FALSE(isAliasFile(path));
    EXPECT_EQ(open(path.c_str(), O_WRONLY | O_NONBLOCK), -1);
    EXPECT_EQ(errno, ENXIO);
    EXPECT_FALSE(isAliasFile("/dev/zero"));
}

TEST_F(AliasFileTest, ClosesWhatItOpens) {
    auto openDescriptors = [] {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    };
    std::string path = write("x.desktop", kLink);
    auto before = openDescriptors();
    EXPECT_TRUE(isAliasFile(path));
    EXPECT_FALSE(isAliasFile(folder / "missing"));
    EXPECT_EQ(openDescriptors(), before);
}

}  // namespace
