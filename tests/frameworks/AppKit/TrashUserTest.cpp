// SPDX-License-Identifier: MIT
// What a user without root's rights meets. The test's process changes its user, so each of these
// runs in a child. Needs root.
#include "AppKit/Trash.h"
#include "Sandbox.h"

#include <functional>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

using namespace appkit;
using namespace trashtest;

constexpr uid_t kNobody = 65534;

// The status of a child that runs `body` as a user of no rights.
TrashStatus asNobody(const std::function<TrashStatus()>& body) {
    pid_t child = fork();
    if (child == 0) {
        bool changed = setgid(kNobody) == 0 && setuid(kNobody) == 0;
        _exit(changed ? static_cast<int>(body()) : 100);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return static_cast<TrashStatus>(WEXITSTATUS(status));
}

class UserTest : public testing::Test {
protected:
    UserTest() {
        places.user = kNobody;
        chmod(sandbox.path().c_str(), 0755);
        makeFolder("data");
    }

    void makeFolder(const std::string& name, mode_t mode = 0755) {
        std::filesystem::create_directory(sandbox / name);
        ASSERT_EQ(chown((sandbox / name).c_str(), kNobody, kNobody), 0);
        ASSERT_EQ(chmod((sandbox / name).c_str(), mode), 0);
    }

    TrashStatus trash(const std::string& path) {
        return asNobody([&] { return moveToTrash(path, places).status; });
    }

    Sandbox sandbox;
    TrashPlaces places = sandbox.places();
};

TEST_F(UserTest, AnOwnFileGoesToTheTrash) {
    makeFolder("own");
    EXPECT_EQ(trash(sandbox.makeFile("own/file")), TrashStatus::Done);
    EXPECT_TRUE(exists(sandbox / "data/Trash/files/file"));
}

TEST_F(UserTest, AFileInAFolderThatMayNotBeChangedStays) {
    makeFolder("locked", 0555);
    std::string path = sandbox.makeFile("locked/file");
    EXPECT_EQ(trash(path), TrashStatus::NotPermitted);
    EXPECT_TRUE(exists(path));
    EXPECT_EQ(namesIn(sandbox / "data/Trash/info"), std::vector<std::string>());
}

TEST_F(UserTest, AFileInAFolderThatMayNotBeEnteredIsNotPermitted) {
    makeFolder("closed", 0000);
    EXPECT_EQ(trash(sandbox.makeFile("closed/file")), TrashStatus::NotPermitted);
}

TEST_F(UserTest, ATrashFolderThatMayNotBeMadeIsReported) {
    makeFolder("own");
    chmod((sandbox / "data").c_str(), 0555);
    std::string path = sandbox.makeFile("own/file");
    EXPECT_EQ(trash(path), TrashStatus::NoTrash);
    EXPECT_TRUE(exists(path));
}

TEST_F(UserTest, ATopFolderOfADiskThatMayNotBeChangedIsReported) {
    MountedImage disk(sandbox);
    std::filesystem::create_directory(disk / "own");
    writeFile(disk / "own/file", "mine");
    ASSERT_EQ(chown((disk / "own").c_str(), kNobody, kNobody), 0);
    EXPECT_EQ(trash(disk / "own/file"), TrashStatus::NoTrash);
    chmod(disk.path().c_str(), 0777);
    EXPECT_EQ(trash(disk / "own/file"), TrashStatus::Done);
    EXPECT_TRUE(exists(disk / ".Trash-65534/files/file"));
}

TEST_F(UserTest, AnItemIsNotRestoredIntoAFolderThatMayNotBeChanged) {
    makeFolder("own");
    std::string path = sandbox.makeFile("own/file");
    EXPECT_EQ(asNobody([&] {
                  TrashReceipt receipt = moveToTrash(path, places).receipt;
                  chmod((sandbox / "own").c_str(), 0555);
                  return restoreFromTrash(receipt).status;
              }),
              TrashStatus::NotPermitted);
    EXPECT_TRUE(exists(sandbox / "data/Trash/files/file"));
}

TEST_F(UserTest, AnItemWithAFolderThatMayNotBeChangedComesBackToAnotherDisk) {
    MountedImage disk(sandbox);
    chmod(disk.path().c_str(), 0777);
    makeFolder("own");
    EXPECT_EQ(asNobody([&] {
                  std::filesystem::create_directories(sandbox / "own/tree/inner");
                  writeFile(sandbox / "own/tree/inner/file", "mine");
                  chmod((sandbox / "own/tree/inner").c_str(), 0555);
                  TrashReceipt receipt = moveToTrash(sandbox / "own/tree", places).receipt;
                  receipt.originalPath = disk / "tree";
                  return restoreFromTrash(receipt).status;
              }),
              TrashStatus::Done);
    EXPECT_EQ(contentOf(disk / "tree/inner/file"), "mine");
    EXPECT_EQ(namesIn(sandbox / "data/Trash/files"), std::vector<std::string>());
    EXPECT_EQ(namesIn(sandbox / "data/Trash/info"), std::vector<std::string>());
}

TEST_F(UserTest, AnItemThatCannotLeaveTheTrashIsRestoredAllTheSame) {
    MountedImage disk(sandbox);
    chmod(disk.path().c_str(), 0777);
    makeFolder("own");
    EXPECT_EQ(asNobody([&] {
                  std::string path = sandbox / "own/file";
                  writeFile(path, "mine");
                  TrashReceipt receipt = moveToTrash(path, places).receipt;
                  receipt.originalPath = disk / "file";
                  chmod((sandbox / "data/Trash/files").c_str(), 0555);
                  return restoreFromTrash(receipt).status;
              }),
              TrashStatus::Done);
    EXPECT_EQ(contentOf(disk / "file"), "mine");
}

}  // namespace
