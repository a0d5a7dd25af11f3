// SPDX-License-Identifier: MIT
#include "CoreServices/AliasResolver.h"
#include "AliasBytes.h"
#include "AliasSandbox.h"

#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

using namespace coreservices;
using namespace aliastest;
namespace fs = std::filesystem;

class AliasResolverTest : public AliasSandbox {
protected:
    void expectFound(const std::string& alias, const std::string& target, AliasKind kind) {
        ResolvedAlias result = resolve(alias);
        EXPECT_EQ(result.resolution, Resolution::Found);
        EXPECT_EQ(result.path, target);
        EXPECT_EQ(result.kind, kind);
        EXPECT_EQ(result.isFolder, kind != AliasKind::File);
        EXPECT_TRUE(result.wasAliased);
    }

    void expectLost(const std::string& alias, Resolution resolution, AliasKind kind) {
        ResolvedAlias result = resolve(alias);
        EXPECT_EQ(result.resolution, resolution);
        EXPECT_EQ(result.kind, kind);
        EXPECT_EQ(result.path, "");
        EXPECT_FALSE(result.isFolder);
        EXPECT_TRUE(result.wasAliased);
    }
};

TEST_F(AliasResolverTest, FindsFoldersAndFiles) {
    std::string target = makeFolder("a folder 100%");
    expectFound(makeLink("1", "file://" + root() + "/a%20folder%20100%25"), target,
                AliasKind::Folder);
    expectFound(makeLink("2", target + "/"), target, AliasKind::Folder);
    std::string file = makeFile("file.txt", "text");
    expectFound(makeLink("3", file), file, AliasKind::File);
}

TEST_F(AliasResolverTest, FindsNamesThatAreNotUtf8) {
    std::string target = makeFolder("bytes \xFF\xFE");
    expectFound(makeLink("1", "file://" + root() + "/bytes%20%ff%FE"), target, AliasKind::Folder);
    expectFound(makeLink("2\xFF", target), target, AliasKind::Folder);
}

TEST_F(AliasResolverTest, TellsTheStartupDiskAsADisk) {
    expectFound(makeLink("1", "file:///"), "/", AliasKind::Disk);
}

TEST_F(AliasResolverTest, FollowsChainsOfAliasFilesAndLinks) {
    std::string target = makeFolder("target");
    std::string first = makeLink("first", target);
    fs::create_symlink("first.desktop", root() + "/link");
    std::string last = makeLink("last", root() + "/link");
    expectFound(last, target, AliasKind::Folder);
    ResolvedAlias one = resolve(last, Chains::OneStep);
    EXPECT_EQ(one.resolution, Resolution::Found);
    EXPECT_EQ(one.path, root() + "/link");
    EXPECT_FALSE(one.isFolder);
}

TEST_F(AliasResolverTest, FollowsLinksToTheParents) {
    std::string target = makeFolder("a/b");
    makeFolder("c");
    fs::create_symlink("../a/./b/", root() + "/c/link");
    expectFound(makeLink("1", root() + "/c/link"), target, AliasKind::Folder);
    fs::create_symlink("a/b", root() + "/short");
    // What ".." means is up to the file system: the folder of the link's target.
    expectFound(makeLink("2", root() + "/short/../b"), target, AliasKind::Folder);
    expectFound(makeLink("3", root() + "/short/.."), root() + "/a", AliasKind::Folder);
}

TEST_F(AliasResolverTest, ResolvesSymbolicLinksThemselves) {
    std::string target = makeFolder("target");
    fs::create_symlink("target", root() + "/link");
    expectFound(root() + "/link", target, AliasKind::Folder);
    fs::create_symlink("nothing", root() + "/broken");
    expectLost(root() + "/broken", Resolution::Missing, AliasKind::File);
}

TEST_F(AliasResolverTest, EndsChainsThatDoNotEnd) {
    std::string one = makeLink("one", root() + "/two.desktop");
    makeLink("two", root() + "/one.desktop");
    expectLost(one, Resolution::TooLong, AliasKind::File);
    std::string self = makeLink("self", root() + "/self.desktop", "Icon=folder");
    expectLost(self, Resolution::TooLong, AliasKind::Folder);
    fs::create_symlink("loop", root() + "/loop");
    expectLost(root() + "/loop", Resolution::TooLong, AliasKind::File);
    expectLost(makeLink("through", root() + "/loop/x"), Resolution::TooLong, AliasKind::File);
}

TEST_F(AliasResolverTest, FollowsLongChainsUpToALimit) {
    std::string target = makeFolder("target");
    std::string next = target;
    for (int i = 1; i <= 39; ++i)
        next = makeLink(std::to_string(i), next);
    expectFound(next, target, AliasKind::Folder);
    for (int i = 40; i <= 41; ++i)
        next = makeLink(std::to_string(i), next);
    expectLost(next, Resolution::TooLong, AliasKind::File);
}

TEST_F(AliasResolverTest, TellsTheKindOfMissingTargetsByTheHint) {
    expectLost(makeLink("1", root() + "/gone"), Resolution::Missing, AliasKind::File);
    expectLost(makeLink("2", root() + "/gone/"), Resolution::Missing, AliasKind::Folder);
    expectLost(makeLink("3", root() + "/gone", "Icon=drive-harddisk"), Resolution::Missing,
               AliasKind::Disk);
    std::string chain = makeLink("4", root() + "/1.desktop", "Icon=folder");
    expectLost(chain, Resolution::Missing, AliasKind::Folder);
    makeFile("file", "");
    expectLost(makeLink("5", root() + "/file/below/"), Resolution::Missing, AliasKind::Folder);
    expectLost(makeLink("6", "/" + std::string(5000, 'x')), Resolution::Missing, AliasKind::File);
}

TEST_F(AliasResolverTest, LeavesAllElseAlone) {
    std::string folder = makeFolder("folder");
    ResolvedAlias result = resolve(folder);
    EXPECT_EQ(result.resolution, Resolution::NotAnAlias);
    EXPECT_FALSE(result.wasAliased);
    EXPECT_TRUE(result.isFolder);
    result = resolve(makeFile("file", "text"));
    EXPECT_EQ(result.resolution, Resolution::NotAnAlias);
    EXPECT_FALSE(result.isFolder);
    result = resolve(root() + "/gone");
    EXPECT_EQ(result.resolution, Resolution::Missing);
    EXPECT_FALSE(result.wasAliased);
}

TEST_F(AliasResolverTest, TellsWhatMayNotBeSeen) {
    ASSERT_EQ(geteuid(), 0u) << "needs root, to become somebody else";
    makeFolder("closed/inner");
    ASSERT_EQ(chmod(root().c_str(), 0755), 0);
    std::string alias = makeLink("1", root() + "/closed/inner/");
    ASSERT_EQ(chmod((root() + "/closed").c_str(), 0700), 0);
    ASSERT_EQ(seteuid(65534), 0);
    // Or the process may not look into its own descriptors.
    ASSERT_EQ(prctl(PR_SET_DUMPABLE, 1), 0);
    expectLost(alias, Resolution::NoPermission, AliasKind::Folder);
    ASSERT_EQ(seteuid(0), 0);
    expectFound(alias, root() + "/closed/inner", AliasKind::Folder);
}

TEST_F(AliasResolverTest, LooksForTheOtherSystemsVolumesByName) {
    std::string target = makeFolder("Volumes/Stick/Photos");
    std::string alias = makeFile("Photos alias", BookmarkBytes()
                                                     .path({"Volumes", "Stick", "Photos"})
                                                     .volume("/Volumes/Stick", "Stick")
                                                     .flags(2)
                                                     .file());
    expectFound(alias, target, AliasKind::Folder);
    fs::remove_all(target);
    expectLost(alias, Resolution::Missing, AliasKind::Folder);
    fs::remove_all(root() + "/Volumes/Stick");
    expectLost(alias, Resolution::NotMounted, AliasKind::Folder);
    expectFound(alias, makeFolder("media/Stick/Photos"), AliasKind::Folder);
}

TEST_F(AliasResolverTest, LooksBelowTheRootForTheOtherSystemsStartupDisk) {
    std::string target = makeFolder("Users");
    std::vector<std::string> names;
    for (const fs::path& name : fs::path(target).relative_path())
        names.push_back(name);
    RecordFields fields;
    fields.volumeName = "Macintosh HD";
    fields.values = {{18, target}, {19, "/"}};
    expectFound(makeFile("old alias", aliasRecord(fields)), target, AliasKind::Folder);
    expectFound(makeFile("new alias", BookmarkBytes().path(names).volume("/", "HD").file()), target,
                AliasKind::Folder);
    fields.values = {{18, "/"}, {19, "/"}};
    expectFound(makeFile("disk alias", aliasRecord(fields)), "/", AliasKind::Disk);
}

TEST_F(AliasResolverTest, FindsNamesComposedOtherwise) {
    std::string target = makeFolder("Volumes/Disk/\u00E4");
    auto bytes = BookmarkBytes().path({"Volumes", "Disk", "a\u0308"}).volume("/Volumes/Disk", "D");
    RecordFields fields;
    fields.volumeName = "Disk";
    fields.values = {{18, "/a\u0308"}};
    expectFound(makeFile("alias", aliasRecord(fields)), target, AliasKind::Folder);
}

TEST_F(AliasResolverTest, KeepsTheKindOfAMissingTargetOfTheOtherSystem) {
    auto bookmark = [](uint64_t flags) {
        return BookmarkBytes().path({"gone for good"}).volume("/", "HD").flags(flags).file();
    };
    // There is no volume of that name either.
    expectLost(makeFile("1", bookmark(1)), Resolution::NotMounted, AliasKind::File);
    makeFolder("Volumes/HD");
    expectLost(makeFile("2", bookmark(1)), Resolution::Missing, AliasKind::File);
    expectLost(makeFile("3", bookmark(2)), Resolution::Missing, AliasKind::Folder);
    expectLost(makeFile("4", bookmark(8)), Resolution::Missing, AliasKind::Disk);
}

TEST_F(AliasResolverTest, MountsNothingAtRest) {
    expectLost(makeLink("1", "smb://server/share"), Resolution::NotMounted, AliasKind::Folder);
    expectLost(makeLink("2", root() + "/media/Stick/x"), Resolution::NotMounted, AliasKind::Folder);
    expectLost(makeLink("3", root() + "/media/Stick"), Resolution::NotMounted, AliasKind::Disk);
    expectLost(makeLink("4", root() + "/Volumes/Stick/x"), Resolution::NotMounted,
               AliasKind::Folder);
    EXPECT_TRUE(mounter->requests.empty());
}

TEST_F(AliasResolverTest, MountsPlacesOnTheNetworkWhenAllowed) {
    std::string alias = makeLink("1", "smb://server/share/x");
    EXPECT_EQ(resolve(alias, Chains::Follow, Mounting::IfNeeded).resolution,
              Resolution::NotMounted);
    EXPECT_EQ(mounter->requests, (Requests{"place smb://server/share/x"}));
    std::string target = makeFolder("gvfs/share/x");
    mounter->onMount = [&] { mounter->paths["smb://server/share/x"] = target; };
    ResolvedAlias result = resolve(alias, Chains::Follow, Mounting::IfNeeded);
    EXPECT_EQ(result.resolution, Resolution::Found);
    EXPECT_EQ(result.path, target);
    expectFound(alias, target, AliasKind::Folder);
}

TEST_F(AliasResolverTest, UsesWhatTheKernelHasMountedOfTheNetwork) {
    std::string target = makeFolder("share/x");
    places.mounts = [this] {
        return std::vector<Mount>{{1, "/", root() + "/share", "cifs", "//server/share"}};
    };
    expectFound(makeLink("1", "smb://server/share/x"), target, AliasKind::Folder);
    expectLost(makeLink("2", "smb://server/share/y"), Resolution::Missing, AliasKind::Folder);
}

TEST_F(AliasResolverTest, MountsVolumesByTheirLabelsWhenAllowed) {
    std::string alias = makeLink("1", root() + "/media/My Stick/x");
    mounter->onMount = [&] { makeFolder("media/My Stick 1/x"); };
    mounter->labelPath = root() + "/media/My Stick 1";
    ResolvedAlias result = resolve(alias, Chains::Follow, Mounting::IfNeeded);
    EXPECT_EQ(mounter->requests, (Requests{"label My Stick"}));
    EXPECT_EQ(result.resolution, Resolution::Found);
    EXPECT_EQ(result.path, root() + "/media/My Stick 1/x");
}

TEST_F(AliasResolverTest, MountsOnlyOnceWhatStaysAway) {
    mounter->onMount = [] {};
    mounter->labelPath = root() + "/media/Stick";
    ResolvedAlias result =
        resolve(makeLink("1", root() + "/media/Stick/x"), Chains::Follow, Mounting::IfNeeded);
    EXPECT_EQ(result.resolution, Resolution::Missing);
    EXPECT_EQ(result.kind, AliasKind::Folder);
    EXPECT_EQ(mounter->requests, (Requests{"label Stick"}));
}

TEST_F(AliasResolverTest, TakesADanglingVolumeLinkForAnUnmountedVolume) {
    makeFolder("Volumes");
    fs::create_symlink(root() + "/media/Stick", root() + "/Volumes/Stick");
    expectLost(makeLink("1", root() + "/Volumes/Stick/x"), Resolution::NotMounted,
               AliasKind::Folder);
}

}  // namespace
