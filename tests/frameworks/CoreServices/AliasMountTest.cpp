// SPDX-License-Identifier: MIT
// Aliases onto real mounts. Each test has a mount namespace of its own, so it needs root.
#include "AliasBytes.h"
#include "AliasSandbox.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

using namespace coreservices;
using namespace aliastest;
namespace fs = std::filesystem;

class AliasMountTest : public AliasSandbox {
protected:
    void SetUp() override {
        ASSERT_EQ(unshare(CLONE_NEWNS), 0) << "needs root";
        ASSERT_EQ(mount("", "/", nullptr, MS_REC | MS_PRIVATE, nullptr), 0);
    }

    void TearDown() override {
        for (const std::string& point : _points)
            umount2(point.c_str(), MNT_DETACH);
    }

    std::string mountTmpfs(const std::string& name) {
        std::string point = makeFolder(name);
        EXPECT_EQ(mount("tmpfs", point.c_str(), "tmpfs", 0, nullptr), 0);
        _points.push_back(point);
        return point;
    }

    // A file system whose server never answers, until the descriptor is closed.
    std::string mountDead(const std::string& name, int* server) {
        std::string point = makeFolder(name);
        *server = open("/dev/fuse", O_RDWR | O_CLOEXEC);
        EXPECT_GE(*server, 0);
        std::string options =
            "fd=" + std::to_string(*server) + ",rootmode=40000,user_id=0,group_id=0";
        EXPECT_EQ(mount("dead", point.c_str(), "fuse", 0, options.c_str()), 0);
        _points.push_back(point);
        return point;
    }

private:
    std::vector<std::string> _points;
};

TEST_F(AliasMountTest, VolumesAreDisksAndTheirFoldersAreNot) {
    std::string volume = mountTmpfs("Volumes/Stick");
    ResolvedAlias result = resolve(makeLink("1", volume));
    EXPECT_EQ(result.resolution, Resolution::Found);
    EXPECT_EQ(result.kind, AliasKind::Disk);
    makeFolder("Volumes/Stick/x");
    EXPECT_EQ(resolve(makeLink("2", volume + "/x")).kind, AliasKind::Folder);
    // Memory that is mounted elsewhere is none of the user's volumes.
    EXPECT_EQ(resolve(makeLink("3", mountTmpfs("memory"))).kind, AliasKind::Folder);
}

TEST_F(AliasMountTest, AliasesOfAnotherSystemsDiskLeadIntoThatDisk) {
    std::string disk = mountTmpfs("media/Macintosh HD");
    makeFolder("media/Macintosh HD/etc");
    std::string alias = makeFile("media/Macintosh HD/etc alias",
                                 BookmarkBytes().path({"etc"}).volume("/", "HD").flags(2).file());
    ResolvedAlias result = resolve(alias);
    EXPECT_EQ(result.path, disk + "/etc") << "and not this system's own";
}

TEST_F(AliasMountTest, DeadServersAreGivenUpAndNotAskedTwice) {
    int server = -1;
    std::string point = mountDead("dead", &server);
    std::string alias = makeLink("1", point + "/folder/");
    places.patience = std::chrono::milliseconds(50);
    ResolvedAlias result = resolve(alias);
    EXPECT_EQ(result.resolution, Resolution::NoAnswer);
    EXPECT_EQ(result.kind, AliasKind::Folder);
    // Longer than the test may take.
    places.patience = std::chrono::hours(1);
    EXPECT_EQ(resolve(makeLink("2", point + "/other")).resolution, Resolution::NoAnswer);
    fs::create_symlink("dead/folder", root() + "/link");
    EXPECT_EQ(resolve(makeLink("link", root() + "/link/x")).resolution, Resolution::NoAnswer);
    EXPECT_EQ(resolve(root() + "/link").resolution, Resolution::NoAnswer);
    std::string folder = makeFolder("alive");
    EXPECT_EQ(resolve(makeLink("3", folder)).resolution, Resolution::Found);
    close(server);
}

TEST_F(AliasMountTest, TheSystemsTableTellsWhatIsNotMounted) {
    std::string point = makeFolder("data disk");
    tav::test::writeFile(places.mountTable, "# comment\nnone /proc proc\ndata " + root() +
                                                "/data\\040disk tmpfs noauto,user 0 0\n"
                                                "/dev/swap none swap sw 0 0\n");
    ResolvedAlias result = resolve(makeLink("1", point + "/x"));
    EXPECT_EQ(result.resolution, Resolution::NotMounted);
    EXPECT_EQ(result.kind, AliasKind::Folder);
    result = resolve(makeLink("2", point));
    EXPECT_EQ(result.resolution, Resolution::NotMounted) << "the empty folder is not the disk";
    EXPECT_EQ(result.kind, AliasKind::Disk);
    mountTmpfs("data disk");
    EXPECT_EQ(resolve(makeLink("2", point)).resolution, Resolution::Found);
}

TEST_F(AliasMountTest, TheSystemsTableMayKnowAMountThroughALink) {
    makeFolder("real");
    std::string point = makeFolder("real/data");
    fs::create_symlink("real", root() + "/by");
    fs::create_symlink("real/data", root() + "/to");
    tav::test::writeFile(places.mountTable,
                         "a " + root() + "/by/data tmpfs\nb " + root() + "/to tmpfs\n");
    EXPECT_EQ(resolve(makeLink("1", root() + "/by/data")).resolution, Resolution::NotMounted);
    mountTmpfs("real/data");
    EXPECT_EQ(resolve(makeLink("1", root() + "/by/data")).resolution, Resolution::Found);
    EXPECT_EQ(resolve(makeLink("2", root() + "/to")).resolution, Resolution::Found);
}

TEST_F(AliasMountTest, VolumesOfTheSystemsTableAreMountedWhenAllowed) {
    std::string point = makeFolder("data");
    tav::test::writeFile(places.mountTable, "data " + point + " tmpfs noauto,user 0 0\n");
    ASSERT_EQ(mount(places.mountTable.c_str(), "/etc/fstab", nullptr, MS_BIND, nullptr), 0);
    places.mounter = AliasPlaces::ofProcess().mounter;
    ResolvedAlias result = resolve(makeLink("1", point), Chains::Follow, Mounting::IfNeeded);
    EXPECT_EQ(result.resolution, Resolution::Found);
    EXPECT_EQ(result.path, point);
    EXPECT_TRUE(result.isFolder);
    umount2(point.c_str(), MNT_DETACH);
    umount2("/etc/fstab", MNT_DETACH);
}

// Without a session there is nobody to ask, and that is found out at once.
TEST_F(AliasMountTest, PlacesOnTheNetworkStayAwayWithoutASession) {
    ASSERT_EQ(unsetenv("DISPLAY"), 0);
    ASSERT_EQ(setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere", 1), 0);
    places.mounter = AliasPlaces::ofProcess().mounter;
    ResolvedAlias result =
        resolve(makeLink("1", "smb://server/share"), Chains::Follow, Mounting::IfNeeded);
    EXPECT_EQ(result.resolution, Resolution::NotMounted);
    EXPECT_EQ(result.kind, AliasKind::Folder);
}

}  // namespace
