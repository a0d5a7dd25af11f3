// SPDX-License-Identifier: MIT
#include "CoreServices/StallingMount.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace {

using namespace coreservices;
namespace fs = std::filesystem;

class StallingMountTest : public testing::Test {
protected:
    StallingMountTest() { mounts = {mountOf("/", "ext4"), mountOf(root() + "/net", "nfs4")}; }

    static Mount mountOf(const std::string& point, const std::string& type) {
        return {1, "/", point, type, "source"};
    }
    std::string root() const { return fs::canonical(folder.path()).string(); }

    tav::test::TemporaryFolder folder;
    std::vector<Mount> mounts;
};

TEST_F(StallingMountTest, IsFoundByThePath) {
    EXPECT_EQ(stallingMountOn(root() + "/net", mounts), root() + "/net");
    EXPECT_EQ(stallingMountOn(root() + "//net/a/b", mounts), root() + "/net");
    EXPECT_EQ(stallingMountOn(root() + "/./x/../net/a", mounts), root() + "/net");
    EXPECT_EQ(stallingMountOn(root() + "/network", mounts), std::nullopt);
    EXPECT_EQ(stallingMountOn("/", mounts), std::nullopt);
    EXPECT_EQ(stallingMountOn("/..", mounts), std::nullopt);
}

TEST_F(StallingMountTest, IsFoundThroughLinks) {
    fs::create_symlink("net/a", root() + "/link");
    fs::create_symlink(root() + "/link", root() + "/absolute");
    EXPECT_EQ(stallingMountOn(root() + "/link", mounts), root() + "/net");
    EXPECT_EQ(stallingMountOn(root() + "/absolute/x", mounts), root() + "/net");
    fs::create_symlink("loop", root() + "/loop");
    EXPECT_EQ(stallingMountOn(root() + "/loop/x", mounts), std::nullopt);
}

TEST_F(StallingMountTest, IsWhatServersHostsAndProcessesAnswerFor) {
    for (const char* type : {"nfs", "smbfs", "lustre", "beegfs", "vboxsf", "virtiofs", "vmhgfs",
                             "autofs", "fuse", "fuseblk", "fuse.sshfs"})
        EXPECT_TRUE(mayStall(mountOf("/net", type))) << type;
    for (const char* type : {"ext4", "btrfs", "vfat", "tmpfs", "overlay", "fusectl", "proc"})
        EXPECT_FALSE(mayStall(mountOf("/", type))) << type;
}

TEST_F(StallingMountTest, MayBeHiddenByALaterMount) {
    mounts.push_back(mountOf(root() + "/net", "ext4"));
    EXPECT_EQ(stallingMountOn(root() + "/net/a", mounts), std::nullopt);
    mounts.push_back(mountOf(root() + "/net/a", "fuse.sshfs"));
    EXPECT_EQ(stallingMountOn(root() + "/net/a", mounts), root() + "/net/a");
}

}  // namespace
