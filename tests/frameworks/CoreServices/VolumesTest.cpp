// SPDX-License-Identifier: MIT
#include "CoreServices/Volumes.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sys/mount.h>

#include <gtest/gtest.h>

namespace {

using namespace coreservices;
namespace fs = std::filesystem;

TEST(MountInfo, ReadsEveryFieldAndUndoesTheKernelsEscapes) {
    std::vector<Mount> mounts = parseMountInfo(
        "27 1 254:0 / / rw,relatime - ext4 /dev/vda rw,discard\n"
        "90 27 0:40 /sub /media/My\\040Disk\\011\\134\\043 rw shared:5 master:1 - fuse.sshfs "
        "user@host:/a\\040b rw\n");
    ASSERT_EQ(mounts.size(), 2u);
    EXPECT_EQ(mounts[0].id, 27u);
    EXPECT_EQ(mounts[0].point, "/");
    EXPECT_EQ(mounts[0].source, "/dev/vda");
    EXPECT_EQ(mounts[1].root, "/sub");
    EXPECT_EQ(mounts[1].point, "/media/My Disk\t\\#");
    EXPECT_EQ(mounts[1].type, "fuse.sshfs");
    EXPECT_EQ(mounts[1].source, "user@host:/a b");
}

TEST(MountInfo, LeavesOutLinesItCannotRead) {
    EXPECT_TRUE(parseMountInfo("").empty());
    EXPECT_TRUE(parseMountInfo("\n\n").empty());
    EXPECT_TRUE(parseMountInfo("27 1 254:0 / / rw - ext4").empty());
    EXPECT_TRUE(parseMountInfo("x 1 254:0 / / rw - ext4 /dev/vda rw").empty());
    EXPECT_TRUE(parseMountInfo("27 1 254:0 / / rw ext4 /dev/vda rw").empty());
    EXPECT_EQ(parseMountInfo("27 1 0:1 / /a\\04 rw - t s o")[0].point, "/a\\04");
}

TEST(MountInfo, ListsThisProcesssMounts) {
    std::vector<Mount> mounts = parseMountInfo(readMountInfo());
    EXPECT_TRUE(std::any_of(mounts.begin(), mounts.end(),
                            [](const Mount& mount) { return mount.point == "/proc"; }));
}

Mount mountAt(const std::string& point, const std::string& type = "ext4",
              const std::string& source = "/dev/sdb1") {
    return {1, "/", point, type, source};
}

TEST(VolumePoints, AreDisksAndSharesAndNotTheSystemsOwn) {
    std::vector<Mount> mounts = {mountAt("/", "ext4", "/dev/vda"),
                                 mountAt("/proc", "proc", "proc"),
                                 mountAt("/boot/efi", "vfat"),
                                 mountAt("/home"),
                                 mountAt("/snap/core/1", "squashfs"),
                                 mountAt("/dev/shm", "tmpfs", "tmpfs"),
                                 mountAt("/run/media/ann/Stick", "vfat"),
                                 mountAt("/run/user/0", "tmpfs", "tmpfs"),
                                 mountAt("/mnt/share", "nfs4", "h:/e"),
                                 mountAt("/mnt/ssh", "fuse.sshfs", "u@h:"),
                                 mountAt("/Volumes/Memory", "tmpfs", ""),
                                 mountAt("/mnt/share", "nfs4", "h:/e"),
                                 {1, "/@sub", "/data", "btrfs", "/dev/sdc"}};
    EXPECT_EQ(volumePoints(mounts, "/Volumes"),
              (std::vector<std::string>{"/run/media/ann/Stick", "/mnt/share", "/mnt/ssh",
                                        "/Volumes/Memory"}));
}

class VolumesTest : public testing::Test {
protected:
    VolumesTest() {
        std::string path = fs::canonical(fs::temp_directory_path()).string() + "/volumes-XXXXXX";
        root = mkdtemp(path.data());
        folder = root + "/Volumes";
        fs::create_directories(folder);
        for (const char* name : {"/media/ann/Stick", "/media/bob/Stick", "/mnt/share"})
            fs::create_directories(root + name);
    }
    ~VolumesTest() override { fs::remove_all(root); }

    Volumes volumes() const { return Volumes(folder, "Start"); }

    std::map<std::string, VolumeState> states(const std::vector<Mount>& mounts) const {
        std::map<std::string, VolumeState> states;
        for (const VolumeEntry& entry : volumes().list(mounts))
            states[entry.name] = entry.state;
        return states;
    }

    void link(const std::string& target, const std::string& name) const {
        fs::create_symlink(target, folder + "/" + name);
    }

    std::string root;
    std::string folder;
};

using States = std::map<std::string, VolumeState>;

TEST_F(VolumesTest, AnEmptyFolderLacksTheStartupDiskAndEveryVolume) {
    EXPECT_EQ(states({mountAt("/"), mountAt(root + "/mnt/share")}),
              (States{{"Start", VolumeState::Missing}, {"share", VolumeState::Missing}}));
}

TEST_F(VolumesTest, EveryKindOfEntryIsToldApart) {
    link("/", "Disk");
    link("/", "Disk again");
    link(root + "/mnt/share", "Share");
    link("../media/ann/Stick", "Relative");
    link(root + "/media/bob/Stick", "Not mounted");
    link(root + "/nowhere", "Dangling");
    link(root + "/mnt", "Mine");
    fs::create_directories(folder + "/Mounted");
    fs::create_directories(folder + "/Plain");
    std::ofstream(folder + "/File") << "x";
    EXPECT_EQ(states({mountAt(root + "/mnt/share"), mountAt(root + "/media/ann/Stick"),
                      mountAt(folder + "/Mounted", "tmpfs", "tmpfs")}),
              (States{{"Disk", VolumeState::StartupLink},
                      {"Disk again", VolumeState::SurplusLink},
                      {"Share", VolumeState::Link},
                      {"Relative", VolumeState::Link},
                      {"Not mounted", VolumeState::StaleLink},
                      {"Dangling", VolumeState::StaleLink},
                      {"Mine", VolumeState::ForeignLink},
                      {"Mounted", VolumeState::MountPoint},
                      {"Plain", VolumeState::PlainFolder},
                      {"File", VolumeState::ForeignEntry}}));
}

TEST_F(VolumesTest, MendingMakesWhatIsMissingAndIsThenDone) {
    fs::remove(folder);
    std::vector<Mount> mounts = {mountAt("/"), mountAt(root + "/media/ann/Stick"),
                                 mountAt(root + "/media/bob/Stick")};
    EXPECT_EQ(volumes().mend(mounts).size(), 4u);
    EXPECT_EQ(fs::read_symlink(folder + "/Start"), "/");
    EXPECT_EQ(fs::read_symlink(folder + "/Stick"), root + "/media/ann/Stick");
    EXPECT_EQ(fs::read_symlink(folder + "/Stick 1"), root + "/media/bob/Stick");
    EXPECT_TRUE(volumes().mend(mounts).empty());
}

TEST_F(VolumesTest, MendingRemovesStaleLinksAndNothingElse) {
    link("/", "Disk");
    link(root + "/nowhere", "Dangling");
    link(root + "/mnt", "Mine");
    fs::create_directories(folder + "/Plain/content");
    fs::create_directories(folder + "/Empty");
    std::ofstream(folder + "/File") << "x";
    std::vector<VolumesChange> changes = volumes().mend({mountAt("/")});
    ASSERT_EQ(changes.size(), 1u);
    EXPECT_EQ(changes[0].kind, VolumesChange::Kind::RemovedLink);
    EXPECT_EQ(changes[0].path, folder + "/Dangling");
    EXPECT_EQ(changes[0].error, 0);
    for (const char* name : {"/Disk", "/Mine", "/Plain/content", "/Empty", "/File"})
        EXPECT_TRUE(fs::exists(fs::symlink_status(folder + name))) << name;
}

TEST_F(VolumesTest, AVolumeMountedAgainGetsItsNameBack) {
    link(root + "/old/Stick", "Stick");
    volumes().mend({mountAt("/"), mountAt(root + "/media/ann/Stick")});
    EXPECT_EQ(fs::read_symlink(folder + "/Stick"), root + "/media/ann/Stick");
}

TEST_F(VolumesTest, MendingDoesNotTakeANameThatIsTaken) {
    fs::create_directories(folder + "/Start/content");
    volumes().mend({mountAt("/")});
    EXPECT_EQ(fs::read_symlink(folder + "/Start 1"), "/");
    EXPECT_TRUE(fs::exists(folder + "/Start/content"));
}

TEST_F(VolumesTest, WhatCannotBeMendedIsReported) {
    fs::remove(folder);
    std::ofstream(folder) << "a file in the way";
    std::vector<VolumesChange> changes = volumes().mend({mountAt("/")});
    ASSERT_EQ(changes.size(), 1u);
    EXPECT_EQ(changes[0].error, ENOTDIR);
}

// Needs root: a real memory file system comes and goes.
TEST_F(VolumesTest, ARealMountAppearsAndItsLinkGoesStaleWhenItIsGone) {
    std::string point = root + "/mnt/real disk";
    fs::create_directories(point);
    std::string inside = folder + "/Inside";
    fs::create_directories(inside);
    ASSERT_EQ(::mount("none", inside.c_str(), "tmpfs", 0, nullptr), 0);
    std::string image = root + "/image";
    std::string command = "truncate -s 4M '" + image + "' && mkfs.ext4 -q '" + image +
                          "' && mount -o loop '" + image + "' '" + point + "'";
    ASSERT_EQ(std::system(command.c_str()), 0);
    volumes().mend(parseMountInfo(readMountInfo()));
    auto mounted = states(parseMountInfo(readMountInfo()));
    EXPECT_EQ(mounted["real disk"], VolumeState::Link);
    EXPECT_EQ(mounted["Inside"], VolumeState::MountPoint);
    EXPECT_EQ(fs::read_symlink(folder + "/real disk"), point);
    ASSERT_EQ(::umount(point.c_str()), 0);
    ASSERT_EQ(::umount(inside.c_str()), 0);
    auto gone = states(parseMountInfo(readMountInfo()));
    EXPECT_EQ(gone["real disk"], VolumeState::StaleLink);
    EXPECT_EQ(gone["Inside"], VolumeState::PlainFolder);
    volumes().mend(parseMountInfo(readMountInfo()));
    EXPECT_FALSE(fs::exists(fs::symlink_status(folder + "/real disk")));
    EXPECT_TRUE(fs::exists(inside));
}

}  // namespace
