// SPDX-License-Identifier: MIT
// The trash of file systems other than the home's, on real ones. Needs root.
#include "AppKit/Trash.h"
#include "Sandbox.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

using namespace appkit;
using namespace trashtest;

class TopFolderTest : public testing::Test {
protected:
    TrashOutcome trash(const std::string& path) { return moveToTrash(path, places); }

    std::string makeFile(const std::string& name) {
        writeFile(disk / name, "on disk");
        return disk / name;
    }

    Sandbox sandbox;
    MountedImage disk{sandbox};
    TrashPlaces places = sandbox.places();
    std::string own = ".Trash-" + std::to_string(geteuid());
    std::string shared = ".Trash/" + std::to_string(geteuid());
};

TEST_F(TopFolderTest, AnItemOfAnotherFileSystemStaysOnIt) {
    std::filesystem::create_directory(disk / "folder");
    TrashOutcome outcome = trash(makeFile("folder/a b.txt"));
    ASSERT_TRUE(outcome.done()) << outcome.explanation();
    EXPECT_EQ(outcome.receipt.trashedPath, disk / own + "/files/a b.txt");
    EXPECT_EQ(contentOf(outcome.receipt.trashedPath), "on disk");
    EXPECT_NE(contentOf(outcome.receipt.infoPath).find("\nPath=folder/a%20b.txt\n"),
              std::string::npos);
    EXPECT_FALSE(exists(sandbox / "data"));
}

TEST_F(TopFolderTest, AUserWithoutAHomeHasTheTrashOfTheFileSystem) {
    places.homeTrash.clear();
    TrashOutcome outcome = trash(makeFile("one"));
    ASSERT_TRUE(outcome.done()) << outcome.explanation();
    EXPECT_EQ(outcome.receipt.trashedPath, disk / own + "/files/one");
    EXPECT_EQ(findInTrash(disk / "one", places).size(), 1u);
}

TEST_F(TopFolderTest, TheAdministratorsSharedFolderIsPreferred) {
    std::filesystem::create_directory(disk / ".Trash");
    chmod((disk / ".Trash").c_str(), 01777);
    EXPECT_EQ(trash(makeFile("one")).receipt.trashedPath, disk / shared + "/files/one");
}

TEST_F(TopFolderTest, ASharedFolderThatIsNotStickyOrALinkIsNotTrusted) {
    std::filesystem::create_directory(disk / ".Trash");
    chmod((disk / ".Trash").c_str(), 0777);
    EXPECT_EQ(trash(makeFile("one")).receipt.trashedPath, disk / own + "/files/one");
    std::filesystem::rename(disk / ".Trash", disk / "elsewhere");
    chmod((disk / "elsewhere").c_str(), 01777);
    std::filesystem::create_symlink("elsewhere", disk / ".Trash");
    EXPECT_EQ(trash(makeFile("two")).receipt.trashedPath, disk / own + "/files/two");
}

TEST_F(TopFolderTest, ATopFolderThatIsALinkOrAnotherUsersIsNoTrash) {
    std::filesystem::create_directory(disk / "elsewhere");
    std::filesystem::create_symlink("elsewhere", disk / own);
    EXPECT_EQ(trash(makeFile("one")).status, TrashStatus::NoTrash);
    unlink((disk / own).c_str());
    std::filesystem::create_directory(disk / own);
    ASSERT_EQ(chown((disk / own).c_str(), 12345, 12345), 0);
    EXPECT_EQ(trash(makeFile("one")).status, TrashStatus::NoTrash);
    EXPECT_EQ(contentOf(disk / "one"), "on disk");
    EXPECT_EQ(namesIn(disk / "elsewhere"), std::vector<std::string>());
}

TEST_F(TopFolderTest, AReadOnlyFileSystemIsReported) {
    std::string path = makeFile("one");
    ASSERT_EQ(mount(nullptr, disk.path().c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
    TrashOutcome outcome = trash(path);
    EXPECT_EQ(outcome.status, TrashStatus::NoTrash);
    EXPECT_EQ(outcome.systemError, EROFS);
}

TEST_F(TopFolderTest, AFullFileSystemLeavesTheItemAndNoHalfInfo) {
    std::string path = makeFile("one");
    ASSERT_TRUE(trash(makeFile("two")).done());
    const int rest = open((disk / "rest").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    // First of names, then of space.
    std::filesystem::create_directory(disk / "many");
    for (int i = 0; mknod((disk / "many/" + std::to_string(i)).c_str(), S_IFREG | 0600, 0) == 0;
         ++i)
        continue;
    ASSERT_EQ(errno, ENOSPC);
    for (const std::string& bytes : {std::string(1 << 16, 'x'), std::string(512, 'x')})
        while (write(rest, bytes.data(), bytes.size()) > 0)
            continue;
    close(rest);
    TrashOutcome outcome = trash(path);
    EXPECT_EQ(outcome.systemError, ENOSPC);
    EXPECT_EQ(contentOf(path), "on disk");
    EXPECT_EQ(namesIn(disk / own + "/info").size(), 1u);
}

TEST_F(TopFolderTest, AMountPointIsNotTrashed) {
    EXPECT_EQ(trash(disk.path()).status, TrashStatus::MountPoint);
}

TEST_F(TopFolderTest, WhereNoTrashMayBePutTheItemStays) {
    places.mayHoldTrash = [](const coreservices::Mount&) { return false; };
    EXPECT_EQ(trash(makeFile("one")).status, TrashStatus::NoTrash);
    EXPECT_TRUE(exists(disk / "one"));
    EXPECT_FALSE(exists(disk / own));
}

TEST_F(TopFolderTest, TheDesktopsRuleKeepsTrashOffMemoryFileSystems) {
    std::filesystem::create_directory(sandbox / "memory");
    std::string memory = sandbox / "memory";
    ASSERT_EQ(mount("none", memory.c_str(), "tmpfs", 0, nullptr), 0);
    writeFile(memory + "/one", "volatile");
    places.mayHoldTrash = TrashPlaces::ofProcess().mayHoldTrash;
    EXPECT_EQ(trash(memory + "/one").status, TrashStatus::NoTrash);
    EXPECT_TRUE(exists(memory + "/one"));
    EXPECT_TRUE(trash(makeFile("one")).done());
    EXPECT_EQ(umount(memory.c_str()), 0);
}

TEST_F(TopFolderTest, ABindMountOfTheHomeFileSystemUsesItsOwnTop) {
    sandbox.makeFile("source/one", "bound");
    std::filesystem::create_directory(sandbox / "bind");
    std::string bind = sandbox / "bind";
    ASSERT_EQ(mount((sandbox / "source").c_str(), bind.c_str(), nullptr, MS_BIND, nullptr), 0);
    TrashOutcome outcome = trash(bind + "/one");
    EXPECT_TRUE(outcome.done()) << outcome.explanation();
    EXPECT_EQ(outcome.receipt.trashedPath, bind + "/" + own + "/files/one");
    EXPECT_TRUE(restoreFromTrash(outcome.receipt).done());
    EXPECT_EQ(contentOf(bind + "/one"), "bound");
    EXPECT_EQ(umount(bind.c_str()), 0);
}

TEST_F(TopFolderTest, AnItemComesBackOntoItsDisk) {
    TrashReceipt receipt = trash(makeFile("one")).receipt;
    EXPECT_TRUE(restoreFromTrash(receipt).done());
    EXPECT_EQ(contentOf(disk / "one"), "on disk");
    EXPECT_FALSE(exists(receipt.infoPath));
}

// What a disk is mounted over since belongs to another file system than the trash.
TEST_F(TopFolderTest, AnItemIsCopiedBackWhereItsFolderIsOnAnotherFileSystemNow) {
    std::string folder = disk / "tree";
    std::filesystem::create_directories(folder + "/inner");
    writeFile(folder + "/inner/file", "deep");
    chmod((folder + "/inner/file").c_str(), 0640);
    std::filesystem::create_symlink("inner/file", folder + "/link");
    ASSERT_EQ(mkfifo((folder + "/pipe").c_str(), 0600), 0);
    struct timespec times[] = {{1'000'000'000, 5}, {1'000'000'001, 7}};
    ASSERT_EQ(utimensat(AT_FDCWD, (folder + "/inner/file").c_str(), times, 0), 0);
    TrashReceipt receipt = trash(folder).receipt;
    receipt.originalPath = sandbox / "moved/tree";
    TrashOutcome outcome = restoreFromTrash(receipt);
    ASSERT_TRUE(outcome.done()) << outcome.explanation();
    EXPECT_EQ(contentOf(sandbox / "moved/tree/inner/file"), "deep");
    EXPECT_EQ(std::filesystem::read_symlink(sandbox / "moved/tree/link"), "inner/file");
    struct stat info;
    ASSERT_EQ(stat((sandbox / "moved/tree/inner/file").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640u);
    EXPECT_EQ(info.st_mtim.tv_sec, 1'000'000'001);
    EXPECT_FALSE(exists(receipt.trashedPath));
    EXPECT_FALSE(exists(receipt.infoPath));
    EXPECT_EQ(namesIn(sandbox / "moved"), std::vector<std::string>{"tree"});
}

TEST_F(TopFolderTest, ACopyThatFailsLeavesTheItemInTheTrash) {
    writeFile(disk / "big", std::string(4 << 20, 'b'));
    TrashReceipt receipt = trash(disk / "big").receipt;
    MountedImage full(sandbox, "full");
    (void)!std::system(("dd if=/dev/zero of=" + (full / "fill") + " bs=64k 2>/dev/null").c_str());
    receipt.originalPath = full / "big";
    EXPECT_EQ(restoreFromTrash(receipt).systemError, ENOSPC);
    EXPECT_EQ(contentOf(receipt.trashedPath).size(), size_t{4} << 20);
    EXPECT_TRUE(exists(receipt.infoPath));
    EXPECT_EQ(namesIn(full.path()), (std::vector<std::string>{"fill", "lost+found"}));
}

TEST_F(TopFolderTest, ACopyDoesNotReplaceWhatHasTakenTheItemsPlace) {
    TrashReceipt receipt = trash(makeFile("one")).receipt;
    receipt.originalPath = sandbox.makeFile("one", "newer");
    EXPECT_EQ(restoreFromTrash(receipt).status, TrashStatus::PlaceTaken);
    EXPECT_EQ(contentOf(sandbox / "one"), "newer");
    EXPECT_TRUE(exists(receipt.trashedPath));
}

}  // namespace
