// SPDX-License-Identifier: MIT
// Trees of real folders; "Linux" is the start-up disk.
#include "FolderTest.h"

#include <dirent.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <memory>
#include <sys/stat.h>

namespace tav::ula {
namespace {

namespace fs = std::filesystem;
using test::onStartupDisk;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class DirMac : public FolderTest {};

TEST_F(DirMac, OnlyTheRootIsRoot) {
    EXPECT_TRUE(Dir("/").isRoot());
    EXPECT_FALSE(Dir("/Volumes").isRoot());
    EXPECT_FALSE(Dir("/Volumes/Linux").isRoot());
}

TEST_F(DirMac, FinalSlashIsCutFromLongerPaths) {
    EXPECT_EQ(Dir("/abc/").fullPath(), "/abc");
    EXPECT_EQ(Dir("/a/").fullPath(), "/a/");
}

TEST_F(DirMac, VisibleFoldersAreFoldersAndLinksThatAreNotHidden) {
    folder("plain");
    folder(".x");
    folder("listed");
    folder("Photo.app");
    file("file.jpg");
    file(".hidden", "listed\n");
    link("link", "plain");
    link("stale", "nowhere");
    alias("alias.desktop", "plain");
    alias("lost.desktop", "gone/");
    alias("photo.desktop", "file.jpg");
    Dir dir(path());
    EXPECT_THAT(namesOf(dir.children(true)),
                UnorderedElementsAre("plain", "link", "alias.desktop", "lost.desktop"));
}

TEST_F(DirMac, AllChildrenAreAll) {
    folder("plain");
    folder(".x");
    folder("Photo.app");
    file("file.jpg");
    link("stale", "nowhere");
    Dir dir(path());
    EXPECT_THAT(namesOf(dir.children(false)),
                UnorderedElementsAre("plain", ".x", "Photo.app", "file.jpg", "stale"));
}

TEST_F(DirMac, ChildrenComeInTheOrderOfTheFolder) {
    for (int i = 0; i < 300; ++i)
        file(std::to_string(i * 7919 % 1000));
    std::vector<std::string> listed;
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(opendir(_folder.path().c_str()), closedir);
    while (const dirent* entry = readdir(stream.get())) {
        if (std::string(entry->d_name).front() != '.')
            listed.emplace_back(entry->d_name);
    }
    Dir dir(path());
    EXPECT_EQ(namesOf(dir.children(false)), listed);
}

TEST_F(DirMac, SecondCallWithTheOtherArgumentGivesTheSameUntilReset) {
    folder("plain");
    file("file");
    Dir dir(path());
    EXPECT_THAT(namesOf(dir.children(true)), ElementsAre("plain"));
    EXPECT_THAT(namesOf(dir.children(false)), ElementsAre("plain"));
    dir.reset();
    EXPECT_THAT(namesOf(dir.children(false)), UnorderedElementsAre("plain", "file"));
}

TEST_F(DirMac, ResetLooksAtTheDiskAgain) {
    folder("sub");
    Dir dir(path() + "/sub");
    EXPECT_TRUE(dir.isDir());
    fs::remove(_folder / "sub");
    EXPECT_TRUE(dir.isDir());
    EXPECT_FALSE(dir.exists());
    dir.reset();
    EXPECT_FALSE(dir.isDir());
    EXPECT_EQ(dir.fullPath(), path() + "/sub");
}

TEST_F(DirMac, LinkListsTheFolderItLeadsTo) {
    folder("plain/inner");
    link("link", "plain");
    Dir dir(path() + "/link");
    ASSERT_EQ(dir.children(true).size(), 1U);
    EXPECT_EQ(dir.children(true)[0]->fullPath(), path() + "/plain/inner");
}

TEST_F(DirMac, AliasListsTheFolderItLeadsTo) {
    folder("plain/inner");
    alias("alias.desktop", "plain");
    Dir dir(path() + "/alias.desktop");
    ASSERT_EQ(dir.children(true).size(), 1U);
    EXPECT_EQ(dir.children(true)[0]->name(), "inner");
    EXPECT_TRUE(dir.containsChildren(true));
}

TEST_F(DirMac, RootsChildrenArePutBehindItsOwnSlash) {
    Dir dir("/");
    ASSERT_FALSE(dir.children(true).empty());
    for (const Dir* child : dir.children(true)) {
        EXPECT_EQ(child->fullPath(), "//" + child->name());
        EXPECT_TRUE(child->isLink());
    }
}

TEST_F(DirMac, FileAndMissingFolderHaveNoChildren) {
    file("file");
    Dir plain(path() + "/file");
    EXPECT_THAT(plain.children(false), IsEmpty());
    EXPECT_FALSE(plain.containsChildren(false));
    Dir missing(path() + "/missing");
    EXPECT_THAT(missing.children(false), IsEmpty());
    EXPECT_FALSE(missing.containsChildren(true));
}

TEST_F(DirMac, LinkToAFileHasNoChildren) {
    file("file");
    link("link", "file");
    Dir dir(path() + "/link");
    EXPECT_TRUE(dir.isLink());
    EXPECT_THAT(dir.children(false), IsEmpty());
}

TEST_F(DirMac, FolderWithADotFileContainsChildrenButNoVisibleFolders) {
    file(".x");
    const Dir dir(path());
    EXPECT_TRUE(dir.containsChildren(false));
    EXPECT_FALSE(dir.containsChildren(true));
}

TEST_F(DirMac, EmptyFolderContainsNothing) {
    const Dir dir(path());
    EXPECT_FALSE(dir.containsChildren(false));
    EXPECT_FALSE(dir.containsChildren(true));
}

TEST_F(DirMac, ContainsVisibleFoldersWhereOneIsKept) {
    file("a.jpg");
    folder("Photo.app");
    EXPECT_FALSE(Dir(path()).containsChildren(true));
    link("to-self", ".");
    EXPECT_TRUE(Dir(path()).containsChildren(true));
}

TEST_F(DirMac, FolderThatCannotBeReadHasNoChildren) {
    folder("closed/inner");
    fs::permissions(_folder.path(), fs::perms(0755));
    fs::permissions(_folder / "closed", fs::perms(0700));
    EXPECT_EQ(asNobody([&] {
                  Dir dir(path() + "/closed");
                  return std::to_string(dir.children(false).size()) + " " +
                         std::to_string(dir.containsChildren(false)) + " " +
                         std::to_string(dir.isHidden());
              }),
              "0 0 1");
}

TEST_F(DirMac, ChildWhoseNameIsNoTextKeepsItsPathAndIsHidden) {
    file("\xFF\xFE");
    Dir dir(path());
    ASSERT_EQ(dir.children(false).size(), 1U);
    EXPECT_EQ(dir.children(false)[0]->fullPath(), path() + "/\xFF\xFE");
    EXPECT_EQ(dir.children(false)[0]->name(), "");
    EXPECT_TRUE(dir.children(false)[0]->isHidden());
    EXPECT_FALSE(Dir(path()).containsChildren(true));
}

TEST_F(DirMac, ChildWhosePathIsTooLongIsHidden) {
    // Made from within, as no path reaches that deep.
    const std::string step(250, 'd');
    int at = open(_folder.path().c_str(), O_PATH | O_DIRECTORY);
    std::string deep = path();
    while (deep.size() + step.size() + 1 < 4090) {
        mkdirat(at, step.c_str(), 0755);
        const int next = openat(at, step.c_str(), O_PATH | O_DIRECTORY);
        close(at);
        at = next;
        deep += "/" + step;
    }
    mkdirat(at, step.c_str(), 0755);
    close(at);
    Dir dir(deep);
    ASSERT_EQ(dir.children(false).size(), 1U);
    EXPECT_EQ(dir.children(false)[0]->properties().flags(), Hidden);
}

TEST_F(DirMac, ChildrenOfVolumesAreTheVolumes) {
    fs::create_directory("/Volumes/Card");
    const test::MountedImage image("/Volumes/Card", _folder.path());
    Dir dir("/Volumes");
    for (const Dir* child : dir.children(true)) {
        const bool isCard = child->name() == "Card";
        EXPECT_EQ(child->properties().flags(), isCard ? Directory | MountPoint : Link);
    }
    EXPECT_THAT(namesOf(dir.children(true)), UnorderedElementsAre("Linux", "Card"));
}

TEST_F(DirMac, MountThatDoesNotAnswerHidesItselfAndHoldsUpNobody) {
    folder("alive");
    folder("dead");
    link("into", "dead/deeper");
    const test::DeadShare share(_folder / "dead");
    Dir dir(path());
    EXPECT_THAT(namesOf(dir.children(true)), ElementsAre("alive"));
    dir.reset();
    EXPECT_EQ(dir.children(false).size(), 3U);
}

/// Folders with many files, in memory: disks take their time to make them.
class LargeFolders : public DirMac {
protected:
    std::string large(int count) const {
        folder("memory/large");
        for (int i = 0; i < count; ++i)
            file("memory/large/" + std::to_string(i), "");
        return path() + "/memory/large";
    }

    const test::MountedMemory memory{_folder / "memory"};
};

TEST_F(LargeFolders, ProgressIsToldOnTheWay) {
    Dir dir(large(2500));
    std::vector<std::size_t> told;
    EXPECT_TRUE(dir.loadChildren(false, [&](std::size_t found) {
        told.push_back(found);
        return true;
    }));
    EXPECT_THAT(told, ElementsAre(1000U, 2000U, 2500U));
    EXPECT_EQ(dir.children(false).size(), 2500U);
}

TEST_F(LargeFolders, ListingIsEndedOnTheWay) {
    Dir dir(large(2500));
    std::size_t told = 0;
    EXPECT_FALSE(dir.loadChildren(false, [&](std::size_t found) {
        told = found;
        return found < 2000;
    }));
    EXPECT_EQ(told, 2000U);
}

TEST_F(LargeFolders, FolderThatVanishesInMidListingLeavesHiddenChildren) {
    Dir dir(large(1500));
    dir.loadChildren(false, [&](std::size_t found) {
        if (found == 1000)
            fs::remove_all(_folder / "memory/large");
        return true;
    });
    EXPECT_GE(dir.children(false).size(), 1000U);
    for (std::size_t i = 1000; i < dir.children(false).size(); ++i)
        EXPECT_EQ(dir.children(false)[i]->properties().flags(), Hidden);
    dir.reset();
    EXPECT_THAT(dir.children(false), IsEmpty());
}

TEST_F(DirMac, FolderThatMovesAwayInMidListingLeavesHiddenFolders) {
    // Whichever way the file system lists, a folder comes last in one of the two.
    int lastOnes = 0;
    for (const bool isMadeFirst : {true, false}) {
        const test::MountedMemory memory(_folder / "memory");
        folder(isMadeFirst ? "memory/moving/folder" : "memory/moving");
        for (int i = 0; i < 1200; ++i)
            file("memory/moving/" + std::to_string(i), "");
        folder("memory/moving/folder");
        Dir dir(path() + "/memory/moving");
        dir.loadChildren(false, [&](std::size_t found) {
            if (found == 1000)
                fs::rename(_folder / "memory/moving", _folder / "memory/moved");
            return true;
        });
        EXPECT_EQ(dir.children(false).size(), 1201U);
        const Dir* const end = dir.children(false).back();
        if (end->name() == "folder") {
            ++lastOnes;
            EXPECT_EQ(end->properties().flags(), Hidden);
        }
    }
    EXPECT_EQ(lastOnes, 1);
}

TEST_F(LargeFolders, FolderThatLosesItsPermissionInMidListingLeavesHiddenChildren) {
    fs::permissions(_folder.path(), fs::perms(0755));
    const std::string closing = large(1500);
    ASSERT_EQ(chown((_folder / "memory/large").c_str(), 65534, 65534), 0);
    EXPECT_EQ(asNobody([&] {
                  Dir dir(closing);
                  dir.loadChildren(false, [&](std::size_t found) {
                      if (found == 1000)
                          fs::permissions(_folder / "memory/large", fs::perms(0));
                      return true;
                  });
                  std::size_t hidden = 0;
                  for (const Dir* child : dir.children(false))
                      hidden += child->properties().flags() == Hidden ? 1 : 0;
                  return std::to_string(dir.children(false).size()) + " " + std::to_string(hidden);
              }),
              "1500 500");
}

TEST_F(DirMac, HalfAMillionEntriesAreListedWhole) {
    // Fewer with sanitizers.
    constexpr std::size_t kEntries = 500'000 / ULA_ROUNDS_DIVISOR;
    const test::MountedMemory memory(_folder / "many");
    const int at = open(memory.point().c_str(), O_PATH | O_DIRECTORY);
    for (std::size_t i = 0; i < kEntries; ++i)
        mknodat(at, (std::to_string(i) + ".jpg").c_str(), S_IFREG | 0644, 0);
    mkdirat(at, "folder", 0755);
    close(at);
    Dir dir(path() + "/many");
    EXPECT_THAT(namesOf(dir.children(true)), ElementsAre("folder"));
    dir.reset();
    EXPECT_EQ(dir.children(false).size(), kEntries + 1);
}

TEST_F(DirMac, SortedChildrenAreInTheFindersOrder) {
    for (const char* name : {"Item 10", "item 9", "apfel", "\u00c4pfel", "Item 1"})
        folder(name);
    Dir dir(path());
    EXPECT_THAT(namesOf(dir.childrenSorted(true)),
                ElementsAre("apfel", "\u00c4pfel", "Item 1", "item 9", "Item 10"));
}

TEST_F(DirMac, DumpGoesOneLevelDeep) {
    folder("sub/deeper");
    Dir dir(path());
    testing::internal::CaptureStdout();
    dir.dump(true);
    const std::string sub = path() + "/sub";
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Name:" + _folder.path().filename().string() + " Title:" +
                  _folder.path().filename().string() + " FullPath:" + path() + " Target:" + path() +
                  "\nIsRoot: 0 Exists:1 IsAlias:0 isUnresolvedAlias:0 isLink:0 isHidden:0 "
                  "isReadOnly:0\nName:sub Title:sub FullPath:" +
                  sub + " Target:" + sub +
                  "\nIsRoot: 0 Exists:1 IsAlias:0 isUnresolvedAlias:0 isLink:0 isHidden:0 "
                  "isReadOnly:0\n");
}

}  // namespace
}  // namespace tav::ula
