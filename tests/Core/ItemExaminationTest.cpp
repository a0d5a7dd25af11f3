// SPDX-License-Identifier: MIT
// The rules by which a record is made, with answers that no disk would give.
#include "ula/src/Core/ItemExamination.h"

#include "ula/src/Core/ItemFacts.h"

#include <gmock/gmock.h>
#include <vector>

namespace tav::ula {
namespace {

using testing::ElementsAre;

/// A visible, writable folder on the start-up disk "V", unless told otherwise; writes down what it
/// is asked.
struct MadeUpItem : ItemFacts {
    bool name(std::string& answer) override {
        asked.emplace_back("name");
        answer = itsName;
        return isText;
    }
    bool isReadable() override {
        asked.emplace_back("readable");
        return readable;
    }
    bool exists(bool& isDirectory) override {
        asked.emplace_back("exists");
        isDirectory = directory;
        return present;
    }
    bool isWritable() override {
        asked.emplace_back("writable");
        return writable;
    }
    bool attributes(ItemAttributes& answer) override {
        asked.emplace_back("attributes");
        answer = its;
        return known;
    }
    std::string resolvedPath() override {
        asked.emplace_back("resolved");
        return resolved;
    }
    bool isAliasOfFolderOrDisk() override {
        asked.emplace_back("alias");
        return aliasOfFolder;
    }
    bool resolveAlias(std::string& answer) override {
        asked.emplace_back("resolve");
        answer = aliasTarget;
        return !aliasTarget.empty();
    }
    const std::string& startupVolume() override { return volume; }

    MadeUpItem() {
        its.displayName = "Shown";
        its.isFolder = true;
    }

    std::string itsName = "name";
    bool isText = true;
    bool readable = true;
    bool present = true;
    bool directory = true;
    bool writable = true;
    bool known = true;
    ItemAttributes its;
    std::string resolved = "/Volumes/V/name";
    bool aliasOfFolder = false;
    std::string aliasTarget;
    std::string volume = "/Volumes/V";
    std::vector<std::string> asked;
};

constexpr const char* kPath = "/Volumes/V/name";

MadeUpItem aliasFile() {
    MadeUpItem item;
    item.directory = item.its.isFolder = false;
    item.its.isResolvable = true;
    item.aliasOfFolder = true;
    return item;
}

TEST(ItemExamination, OrdinaryFolderHasItsOwnPathForTarget) {
    MadeUpItem item;
    const FileProperties properties = examineItem(kPath, item);
    EXPECT_EQ(properties.flags(), Directory);
    EXPECT_EQ(properties.name(), "name");
    EXPECT_EQ(properties.title(), "Shown");
    EXPECT_EQ(properties.targetPath(), kPath);
    EXPECT_EQ(properties.fullPath(), kPath);
    EXPECT_THAT(item.asked,
                ElementsAre("name", "readable", "exists", "writable", "attributes", "resolved"));
}

TEST(ItemExamination, PathThatIsNoTextIsHiddenAndNothingElseIsAsked) {
    MadeUpItem item;
    item.isText = false;
    const FileProperties properties = examineItem(kPath, item);
    EXPECT_EQ(properties.flags(), Hidden);
    EXPECT_EQ(properties.fullPath(), kPath);
    EXPECT_EQ(properties.name() + properties.title() + properties.targetPath(), "");
    EXPECT_THAT(item.asked, ElementsAre("name"));
}

TEST(ItemExamination, UnreadableItemHasItsNameAndIsHidden) {
    MadeUpItem item;
    item.readable = false;
    const FileProperties properties = examineItem(kPath, item);
    EXPECT_EQ(properties.flags(), Hidden);
    EXPECT_EQ(properties.name(), "name");
    EXPECT_EQ(properties.title() + properties.targetPath(), "");
    EXPECT_THAT(item.asked, ElementsAre("name", "readable"));
}

TEST(ItemExamination, MissingItemHasItsNameAndIsHidden) {
    MadeUpItem item;
    item.present = false;
    EXPECT_EQ(examineItem(kPath, item).flags(), Hidden);
    EXPECT_THAT(item.asked, ElementsAre("name", "readable", "exists"));
}

TEST(ItemExamination, ItemUnknownToLaunchServicesKeepsWhatTheFileManagerTold) {
    MadeUpItem item;
    item.known = false;
    item.writable = false;
    const FileProperties properties = examineItem(kPath, item);
    EXPECT_EQ(properties.flags(), Hidden | Directory | ReadOnly);
    EXPECT_EQ(properties.title() + properties.targetPath(), "");
}

TEST(ItemExamination, ItemWithAnEmptyDisplayNameIsHidden) {
    MadeUpItem item;
    item.its.displayName.clear();
    EXPECT_EQ(examineItem(kPath, item).flags(), Hidden | Directory);
}

TEST(ItemExamination, InvisibleItemIsHidden) {
    MadeUpItem item;
    item.its.isInvisible = true;
    EXPECT_EQ(examineItem(kPath, item).flags(), Hidden | Directory);
}

TEST(ItemExamination, PackageIsHiddenAndKeepsDirectory) {
    MadeUpItem item;
    item.its.isFolder = false;
    item.its.isPackage = true;
    EXPECT_EQ(examineItem(kPath, item).flags(), Hidden | Directory);
}

TEST(ItemExamination, VolumeIsAMountPoint) {
    MadeUpItem item;
    item.its.isVolume = true;
    EXPECT_EQ(examineItem(kPath, item).flags(), Directory | MountPoint);
}

TEST(ItemExamination, SymbolicLinkLeadsToTheResolvedPathAndShowsItsName) {
    MadeUpItem item;
    item.its.isFolder = false;
    item.its.isSymbolicLink = true;
    item.resolved = "/Volumes/V/elsewhere";
    const FileProperties properties = examineItem(kPath, item);
    EXPECT_EQ(properties.flags(), Link);
    EXPECT_EQ(properties.title(), "name");
    EXPECT_EQ(properties.targetPath(), "/Volumes/V/elsewhere");
}

TEST(ItemExamination, ResolvedPathOutsideVolumesIsPutOnTheStartupDisk) {
    MadeUpItem item;
    for (const char* resolved : {"/Users/x", "/usr", "/volumes/x"}) {
        item.resolved = resolved;
        EXPECT_EQ(examineItem("/x", item).targetPath(), item.volume + resolved);
    }
}

TEST(ItemExamination, FolderInTheFormOfTheStartupDiskIsNoLink) {
    MadeUpItem item;
    item.resolved = "/Users/x";
    EXPECT_EQ(examineItem("/Volumes/V/Users/x", item).flags(), Directory);
    EXPECT_EQ(examineItem("/Users/x", item).flags(), Link);
}

TEST(ItemExamination, OnlyTheFirstEightCharactersTellThatAPathIsInVolumes) {
    MadeUpItem item;
    item.resolved = "/Volumes2/x";
    EXPECT_EQ(examineItem("/Volumes2/x", item).flags(), Directory);
    item.resolved = "/Volumes";
    EXPECT_EQ(examineItem("/Volumes", item).flags(), Directory);
}

TEST(ItemExamination, WhatLeadsToTheRootIsALinkToItself) {
    MadeUpItem item;
    item.resolved = "/";
    const FileProperties properties = examineItem("/Volumes/V", item);
    EXPECT_EQ(properties.flags(), Link);
    EXPECT_EQ(properties.targetPath(), "/Volumes/V");
}

TEST(ItemExamination, AliasOfAFolderLeadsToIt) {
    MadeUpItem item = aliasFile();
    item.aliasTarget = "/Volumes/Card/DCIM";
    const FileProperties properties = examineItem(kPath, item);
    EXPECT_EQ(properties.flags(), Alias);
    EXPECT_EQ(properties.title(), "name");
    EXPECT_EQ(properties.targetPath(), "/Volumes/Card/DCIM");
}

TEST(ItemExamination, AliasWhoseTargetIsNotFoundIsUnresolvedAndKeepsItsPath) {
    MadeUpItem item = aliasFile();
    const FileProperties properties = examineItem(kPath, item);
    EXPECT_EQ(properties.flags(), Alias | UnresolvedAlias);
    EXPECT_EQ(properties.targetPath(), kPath);
}

TEST(ItemExamination, AliasOfAPlainFileIsAFile) {
    MadeUpItem item = aliasFile();
    item.aliasOfFolder = false;
    const FileProperties properties = examineItem(kPath, item);
    EXPECT_EQ(properties.flags(), 0U);
    EXPECT_EQ(properties.title(), "Shown");
    EXPECT_EQ(item.asked.back(), "alias");
}

TEST(ItemExamination, LinkIsNotTakenForAnAlias) {
    MadeUpItem item = aliasFile();
    item.its.isSymbolicLink = true;
    examineItem(kPath, item);
    EXPECT_EQ(item.asked.back(), "resolved");
}

TEST(ItemExamination, EightSystemFoldersAtTheTopOfTheStartupDiskAreHidden) {
    for (const char* folder :
         {"/tmp", "/Network", "/etc", "/var", "/automount", "/net", "/home", "/dev"}) {
        MadeUpItem item;
        item.resolved = folder;
        EXPECT_EQ(examineItem(item.volume + folder, item).flags(), Hidden | Directory) << folder;
    }
}

TEST(ItemExamination, WhatLiesInTheSystemFoldersOrIsCalledLikeThemIsNot) {
    for (const char* folder : {"/dev/x", "/Dev", "/Tmp", "/devs", "/Users/dev", "/usr"}) {
        MadeUpItem item;
        item.resolved = folder;
        EXPECT_EQ(examineItem(item.volume + folder, item).flags(), Directory) << folder;
    }
    MadeUpItem item;
    item.resolved = "/Volumes/Card/dev";
    EXPECT_EQ(examineItem("/Volumes/Card/dev", item).flags(), Directory);
}

TEST(ItemExamination, LinkToASystemFolderIsHidden) {
    MadeUpItem item;
    item.resolved = "/etc";
    EXPECT_EQ(examineItem("/Volumes/V/configuration", item).flags(), Hidden | Link);
}

TEST(ItemExamination, SelfAndParentAreHidden) {
    for (const char* name : {".", ".."}) {
        MadeUpItem item;
        item.itsName = name;
        EXPECT_EQ(examineItem(kPath, item).flags(), Hidden | Directory);
    }
}

}  // namespace
}  // namespace tav::ula
