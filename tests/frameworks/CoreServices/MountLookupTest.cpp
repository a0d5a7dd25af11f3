// SPDX-License-Identifier: MIT
// Needs root: mounts in a space of its own.
#include "CoreServices/MountLookup.h"
#include "CoreServices/MountSerials.h"
#include "CoreServices/Volumes.h"

#include "tests/support/Mounts.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace coreservices;
using namespace tav::test;
namespace fs = std::filesystem;

std::vector<std::string> pointsOf(const std::vector<Mount>& mounts) {
    std::vector<std::string> points;
    for (const Mount& mount : mounts)
        points.push_back(mount.point + " " + mount.source);
    return points;
}

using Points = std::vector<std::string>;

TEST(MountInfo, ReadsParentDeviceAndReadOnly) {
    std::vector<Mount> mounts = parseMountInfo("27 1 254:0 / / rw,relatime - ext4 /dev/vda rw\n"
                                               "90 27 8:17 / /a ro,nosuid - vfat /dev/sdb1 rw\n"
                                               "91 27 8:18 / /b rw - iso9660 /dev/sr0 ro,x\n"
                                               "92 27 8:19 / /c rw,rootcontext=ro - x y errors=ro");
    ASSERT_EQ(mounts.size(), 4u);
    EXPECT_EQ(mounts[0].parent, 1u);
    EXPECT_EQ(mounts[1].device, "8:17");
    EXPECT_FALSE(mounts[0].isReadOnly);
    EXPECT_TRUE(mounts[1].isReadOnly);
    EXPECT_TRUE(mounts[2].isReadOnly);
    EXPECT_FALSE(mounts[3].isReadOnly);
}

TEST(ReachableMounts, OfAPointMountedOverTheLastOneCounts) {
    EXPECT_EQ(pointsOf(reachableMounts(parseMountInfo("27 1 8:1 / / rw - ext4 root rw\n"
                                                      "30 27 8:2 / /m rw - ext4 lower rw\n"
                                                      "31 30 8:3 / /m rw - ext4 upper rw\n"))),
              (Points{"/ root", "/m upper"}));
}

TEST(ReachableMounts, WhatLiesBelowAHiddenFolderIsLeftOut) {
    EXPECT_EQ(pointsOf(reachableMounts(parseMountInfo("27 1 8:1 / / rw - ext4 root rw\n"
                                                      "30 27 8:2 / /m/disk rw - ext4 hidden rw\n"
                                                      "31 27 0:3 / /m rw - tmpfs cover rw\n"
                                                      "32 31 8:4 / /m/other rw - ext4 seen rw\n"))),
              (Points{"/ root", "/m cover", "/m/other seen"}));
}

TEST(ReachableMounts, TheRootMayBeMountedOverToo) {
    EXPECT_EQ(pointsOf(reachableMounts(parseMountInfo("1 1 0:1 / / rw - rootfs rootfs rw\n"
                                                      "27 1 8:1 / / rw - ext4 root rw\n"
                                                      "30 27 8:2 / /m rw - ext4 disk rw\n"))),
              (Points{"/ root", "/m disk"}));
}

// A program may have another root, and a table that was read in pieces may be nonsense.
TEST(ReachableMounts, TablesWithoutARootOrWithCirclesHaveAnAnswer) {
    EXPECT_EQ(reachableMounts(parseMountInfo("30 27 8:2 / /m rw - ext4 disk rw\n")).size(), 1u);
    EXPECT_EQ(pointsOf(reachableMounts(parseMountInfo("27 28 8:1 / / rw - ext4 a rw\n"
                                                      "28 27 8:1 / / rw - ext4 b rw\n"))),
              Points{"/ b"});
    EXPECT_TRUE(reachableMounts({}).empty());
}

TEST(MountCovering, IsTheLongestPointAboveThePath) {
    std::vector<Mount> mounts = parseMountInfo("27 1 8:1 / / rw - ext4 root rw\n"
                                               "30 27 8:2 / /me rw - ext4 short rw\n"
                                               "31 30 8:3 / /media rw - ext4 long rw\n");
    EXPECT_EQ(mountCovering("/media/x", mounts)->source, "long");
    EXPECT_EQ(mountCovering("/media", mounts)->source, "long");
    EXPECT_EQ(mountCovering("/me/dia", mounts)->source, "short");
    EXPECT_EQ(mountCovering("/mediax", mounts)->source, "root");
    EXPECT_EQ(mountCovering("/", mounts)->source, "root");
    EXPECT_EQ(mountCovering("", mounts), nullptr);
    EXPECT_EQ(mountCovering("media", mounts), nullptr);
    EXPECT_EQ(mountCovering("/x", {}), nullptr);
}

class PathWithoutLinks : public testing::Test {
protected:
    std::string resolved(const std::string& path) const {
        return pathWithoutLinks(path, *currentMounts());
    }
    TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};
};

TEST_F(PathWithoutLinks, FollowsLinksOfEveryForm) {
    fs::create_directory(folder / "place");
    fs::create_symlink(folder / "place", folder / "absolute");
    fs::create_symlink("place/../place", folder / "relative");
    fs::create_symlink("relative", folder / "chain");
    for (const char* name : {"/absolute", "/relative", "/chain", "//./place/", "/none/../chain"})
        EXPECT_EQ(resolved(folder.path().string() + name), folder / "place") << name;
    EXPECT_EQ(resolved(folder / "chain/below/nothing"), folder / "place/below/nothing");
}

TEST_F(PathWithoutLinks, CirclesAndRelativePathsLeadNowhere) {
    fs::create_symlink("b", folder / "a");
    fs::create_symlink("a", folder / "b");
    EXPECT_EQ(resolved(folder / "a"), "");
    EXPECT_EQ(resolved("relative"), "");
    EXPECT_EQ(resolved(""), "");
    EXPECT_EQ(resolved("/../.."), "/");
}

TEST_F(PathWithoutLinks, AShareWithoutAServerIsNotAsked) {
    DeadShare share(folder / "share");
    fs::create_symlink(folder / "share", folder / "link");
    EXPECT_EQ(resolved(folder / "link/a/../b"), folder / "share/b");
    MountList mounts = currentMounts();
    EXPECT_EQ(mountOf(folder / "link/none", *mounts)->type, "fuse.sshfs");
    EXPECT_EQ(mountOf(folder / "none", *mounts), nullptr);
}

TEST(CurrentMounts, ShowEveryChangeAtOnce) {
    TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};
    auto isMounted = [&] {
        MountList mounts = currentMounts();
        return mountCovering(folder.path(), *mounts)->point == folder.path();
    };
    for (int round = 0; round < 20; ++round) {
        EXPECT_FALSE(isMounted());
        MountedMemory memory(folder.path());
        EXPECT_TRUE(isMounted());
    }
}

TEST(CurrentMounts, AreOnesOfAViewAsLongAsItLivesOnItsThread) {
    TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};
    const MountList before = currentMounts();
    MountedMemory memory(folder.path());
    {
        const MountView view(before);
        EXPECT_EQ(currentMounts(), before);
        const MountList none = std::make_shared<std::vector<Mount>>();
        {
            const MountView inner(none);
            EXPECT_EQ(currentMounts(), none);
        }
        EXPECT_EQ(currentMounts(), before);
        std::thread([&] { EXPECT_EQ(currentMounts()->size(), before->size() + 1); }).join();
    }
    EXPECT_EQ(currentMounts()->size(), before->size() + 1);
}

TEST(MountSerials, AreNeverGivenAgain) {
    TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};
    auto serial = [&]() -> uint64_t {
        MountedMemory memory(folder.path());
        const MountList mounts = currentMounts();
        const Mount& mount = *mountCovering(folder.path(), *mounts);
        const std::map<uint64_t, uint64_t> serials = mountSerials();
        // Older kernels have none at all.
        if (!serials.empty())
            EXPECT_EQ(serials.count(mount.id), 1u);
        return serials.empty() ? 0 : serials.at(mount.id);
    };
    const uint64_t first = serial();
    EXPECT_EQ(first == serial(), first == 0);
}

TEST(CurrentMounts, AreReadOnceForManyQuestions) {
    MountList first = currentMounts();
    int same = 0;
    for (int i = 0; i < 100; ++i)
        same += currentMounts() == first;
    EXPECT_GT(same, 50);
}

// The child must see its own changes, and leave the parent's to the parent.
TEST(CurrentMounts, AreKeptApartInAForkedChild) {
    TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};
    auto isMounted = [&] {
        MountList mounts = currentMounts();
        return mountCovering(folder.path(), *mounts)->point == folder.path();
    };
    ASSERT_FALSE(isMounted());
    pid_t child = fork();
    if (child == 0) {
        MountedMemory memory(folder.path());
        bool seen = isMounted();
        memory.unmount();
        // Left for the parent.
        bool done = mount("tmpfs", folder.path().c_str(), "tmpfs", 0, nullptr) == 0;
        _exit(seen && done && isMounted() ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(isMounted());
    EXPECT_EQ(umount(folder.path().c_str()), 0);
}

TEST(CurrentMounts, TellThatAVolumeTurnedReadOnly) {
    TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};
    MountedMemory memory(folder.path());
    auto isReadOnly = [&] {
        MountList mounts = currentMounts();
        return mountCovering(memory.point(), *mounts)->isReadOnly;
    };
    EXPECT_FALSE(isReadOnly());
    ASSERT_EQ(mount("none", memory.point().c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
    EXPECT_TRUE(isReadOnly());
}

std::vector<std::string> volumes(const std::string& table) {
    return volumePoints(parseMountInfo(table), "/Volumes");
}

TEST(VolumePoints, OfOneDeviceMountedTwiceTheFirstCounts) {
    EXPECT_EQ(volumes("27 1 8:1 / / rw - ext4 /dev/sda1 rw\n"
                      "30 27 8:17 / /media/a rw - ext4 /dev/sdb1 rw\n"
                      "31 27 8:17 / /mnt/b rw - ext4 /dev/sdb1 rw\n"
                      "32 27 8:1 / /mnt/root rw - ext4 /dev/sda1 rw\n"),
              (Points{"/media/a"}));
}

TEST(VolumePoints, BindMountsCountOnlyInTheVolumesFolder) {
    EXPECT_EQ(volumes("27 1 8:1 / / rw - ext4 /dev/sda1 rw\n"
                      "30 27 8:1 /home/ann /srv/x rw - ext4 /dev/sda1 rw\n"
                      "31 27 8:1 /home/ann /Volumes/Ann rw - ext4 /dev/sda1 rw\n"
                      "32 27 8:1 / /Volumes/All rw - ext4 /dev/sda1 rw\n"
                      "33 27 8:1 /x /Volumes/deep/er rw - ext4 /dev/sda1 rw\n"),
              (Points{"/Volumes/Ann", "/Volumes/All"}));
}

// Of one server all may have the same number; their sources tell them apart.
TEST(VolumePoints, TwoExportsOfOneServerAreTwoVolumes) {
    EXPECT_EQ(volumes("30 27 0:44 / /mnt/a rw - nfs4 host:/a rw\n"
                      "31 27 0:44 / /mnt/b rw - nfs4 host:/b rw\n"
                      "32 27 0:44 / /mnt/again rw - nfs4 host:/a rw\n"),
              (Points{"/mnt/a", "/mnt/b"}));
}

TEST(Volumes, LinkIntoAShareWithoutAServerIsListedWithoutAskingIt) {
    TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};
    fs::create_directory(folder / "Volumes");
    DeadShare share(folder / "share");
    fs::create_symlink(folder / "share", folder / "Volumes/Share");
    fs::create_symlink(folder / "share/inner", folder / "Volumes/Inner");
    std::vector<VolumeEntry> entries = Volumes(folder / "Volumes").list(*currentMounts());
    auto stateOf = [&](const std::string& name) {
        return std::find_if(entries.begin(), entries.end(),
                            [&](const VolumeEntry& entry) { return entry.name == name; })
            ->state;
    };
    EXPECT_EQ(stateOf("Share"), VolumeState::Link);
    EXPECT_EQ(stateOf("Inner"), VolumeState::ForeignLink);
}

}  // namespace
