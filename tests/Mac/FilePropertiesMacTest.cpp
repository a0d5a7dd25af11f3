// SPDX-License-Identifier: MIT
// Records of real items; "Linux" is the start-up disk.
#include "ula/FileProperties.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/Mounts.h"
#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tav::ula {
namespace {

namespace fs = std::filesystem;
using test::onStartupDisk;

class FilePropertiesMac : public testing::Test {
protected:
    std::string makeFolder(const std::string& name) const {
        fs::create_directories(_folder / name);
        return at(name);
    }
    std::string makeFile(const std::string& name, std::string_view bytes = "x") const {
        test::writeFile(_folder / name, bytes);
        return at(name);
    }
    std::string makeLink(const std::string& name, const std::string& target) const {
        fs::create_symlink(target, _folder / name);
        return at(name);
    }
    std::string makeAlias(const std::string& name, const std::string& url) const {
        return makeFile(name, "[Desktop Entry]\nType=Link\nName=x\nURL=" + url + "\n");
    }
    std::string at(const std::string& name) const { return onStartupDisk(_folder / name); }

    test::TemporaryFolder _folder;
};

std::uint32_t flagsOf(const std::string& path) {
    return FileProperties::create(path).flags();
}

TEST_F(FilePropertiesMac, PathThatDoesNotExistIsHiddenAndHasItsName) {
    const FileProperties properties = FileProperties::create("/no/such/thing");
    EXPECT_EQ(properties.fullPath(), "/no/such/thing");
    EXPECT_EQ(properties.name(), "thing");
    EXPECT_EQ(properties.flags(), Hidden);
    EXPECT_EQ(properties.title() + properties.targetPath(), "");
}

TEST_F(FilePropertiesMac, EmptyPathIsHidden) {
    const FileProperties properties = FileProperties::create("");
    EXPECT_EQ(properties.flags(), Hidden);
    EXPECT_EQ(properties.name() + properties.fullPath(), "");
}

TEST_F(FilePropertiesMac, PathThatIsNoTextIsHiddenAndHasNoName) {
    const std::string path = _folder / "\xFF.jpg";
    test::writeFile(path, "x");
    const FileProperties properties = FileProperties::create(path);
    EXPECT_EQ(properties.fullPath(), path);
    EXPECT_EQ(properties.name(), "");
    EXPECT_EQ(properties.flags(), Hidden);
}

TEST_F(FilePropertiesMac, FileIsNothingInParticular) {
    const std::string path = makeFile("a b\"c'd\n\u00e9.jpg");
    const FileProperties properties = FileProperties::create(path);
    EXPECT_EQ(properties.flags(), 0U);
    EXPECT_EQ(properties.name(), "a b\"c'd\n\u00e9.jpg");
    EXPECT_EQ(properties.title(), properties.name());
    EXPECT_EQ(properties.targetPath(), path);
}

TEST_F(FilePropertiesMac, ComposedAndDecomposedNamesStayAsTheyAre) {
    for (const char* name : {"\u00e9", "e\u0301"})
        EXPECT_EQ(FileProperties::create(makeFile(name)).name(), name);
}

TEST_F(FilePropertiesMac, NameOf255BytesIsKeptWhole) {
    const std::string name(255, 'n');
    EXPECT_EQ(FileProperties::create(makeFile(name)).title(), name);
}

TEST_F(FilePropertiesMac, PathTooLongForTheSystemIsHidden) {
    EXPECT_EQ(flagsOf("/" + std::string(5000, 'p')), Hidden);
}

TEST_F(FilePropertiesMac, FolderInTheFormOfTheStartupDiskIsADirectory) {
    const std::string path = makeFolder("folder");
    const FileProperties properties = FileProperties::create(path);
    EXPECT_EQ(properties.flags(), Directory);
    EXPECT_EQ(properties.targetPath(), path);
}

TEST_F(FilePropertiesMac, FolderInItsPlainFormIsALinkToTheOther) {
    makeFolder("folder");
    const FileProperties properties = FileProperties::create(_folder / "folder");
    EXPECT_EQ(properties.flags(), Link);
    EXPECT_EQ(properties.targetPath(), at("folder"));
}

TEST_F(FilePropertiesMac, FileInItsPlainFormIsNoLink) {
    makeFile("file");
    const FileProperties properties = FileProperties::create(_folder / "file");
    EXPECT_EQ(properties.flags(), 0U);
    EXPECT_EQ(properties.targetPath(), _folder / "file");
}

TEST_F(FilePropertiesMac, LinkToAFolderLeadsToItAndShowsItsName) {
    makeFolder("folder");
    const FileProperties properties = FileProperties::create(makeLink("link", "folder"));
    EXPECT_EQ(properties.flags(), Link);
    EXPECT_EQ(properties.title(), properties.name());
    EXPECT_EQ(properties.targetPath(), at("folder"));
}

TEST_F(FilePropertiesMac, LinkToAFileIsALinkToo) {
    makeFile("file");
    const FileProperties properties = FileProperties::create(makeLink("link", "file"));
    EXPECT_EQ(properties.flags(), Link);
    EXPECT_EQ(properties.targetPath(), at("file"));
}

TEST_F(FilePropertiesMac, ChainOfLinksLeadsToItsEnd) {
    makeFolder("folder");
    makeLink("first", "folder");
    EXPECT_EQ(FileProperties::create(makeLink("second", "first")).targetPath(), at("folder"));
}

TEST_F(FilePropertiesMac, LinkToNothingAndLoopsOfLinksAreHidden) {
    EXPECT_EQ(flagsOf(makeLink("stale", "nowhere")), Hidden);
    makeLink("one", "two");
    EXPECT_EQ(flagsOf(makeLink("two", "one")), Hidden);
}

TEST_F(FilePropertiesMac, RootIsALinkToItself) {
    const FileProperties properties = FileProperties::create("/");
    EXPECT_EQ(properties.name(), "/");
    EXPECT_EQ(properties.targetPath(), "/");
    EXPECT_TRUE(properties.isFlagSet(Link));
    EXPECT_FALSE(properties.isFlagSet(Hidden) || properties.isFlagSet(Directory));
}

TEST_F(FilePropertiesMac, StartupDisksLinkLeadsToItself) {
    const FileProperties properties = FileProperties::create("/Volumes/Linux");
    EXPECT_EQ(properties.flags(), Link);
    EXPECT_EQ(properties.title(), "Linux");
    EXPECT_EQ(properties.targetPath(), "/Volumes/Linux");
}

TEST_F(FilePropertiesMac, SystemFoldersOfTheStartupDiskAreHiddenAndWhatLiesInThemIsNot) {
    EXPECT_TRUE(FileProperties::create("/Volumes/Linux/dev").isFlagSet(Hidden));
    EXPECT_TRUE(FileProperties::create("/Volumes/Linux/etc").isFlagSet(Hidden));
    EXPECT_FALSE(FileProperties::create("/Volumes/Linux/dev/null").isFlagSet(Hidden));
    EXPECT_FALSE(FileProperties::create("/Volumes/Linux/usr").isFlagSet(Hidden));
}

TEST_F(FilePropertiesMac, DotNamesAreHidden) {
    EXPECT_EQ(flagsOf(makeFile(".profile")), Hidden);
    EXPECT_EQ(flagsOf(makeFolder(".cache")), Hidden | Directory);
}

TEST_F(FilePropertiesMac, NamesInTheFoldersHiddenListAreHidden) {
    makeFile(".hidden", "lost+found\nscratch");
    EXPECT_EQ(flagsOf(makeFolder("lost+found")), Hidden | Directory);
    EXPECT_EQ(flagsOf(makeFile("scratch")), Hidden);
    EXPECT_EQ(flagsOf(makeFile("scratc")), 0U);
}

TEST_F(FilePropertiesMac, PackagesAreHiddenAndStayDirectories) {
    for (const char* name : {"Photo.app", "X.framework", "Y.BUNDLE"})
        EXPECT_EQ(flagsOf(makeFolder(name)), Hidden | Directory) << name;
    EXPECT_EQ(flagsOf(makeFolder(".app")), Hidden | Directory);
    EXPECT_EQ(flagsOf(makeFolder("app")), Directory);
    EXPECT_EQ(flagsOf(makeFile("file.app")), 0U);
}

TEST_F(FilePropertiesMac, LinkToAPackageIsALinkAndShown) {
    makeFolder("Photo.app");
    EXPECT_EQ(flagsOf(makeLink("Photo", "Photo.app")), Link);
}

TEST_F(FilePropertiesMac, AliasOfAFolderLeadsToItAndShowsItsName) {
    makeFolder("folder");
    const FileProperties properties =
        FileProperties::create(makeAlias("Pictures.desktop", "file://" + (_folder / "folder")));
    EXPECT_EQ(properties.flags(), Alias);
    EXPECT_EQ(properties.title(), "Pictures.desktop");
    EXPECT_EQ(properties.targetPath(), _folder / "folder");
}

TEST_F(FilePropertiesMac, AliasesAreFollowedToTheEndOfTheirChain) {
    makeFolder("folder");
    makeAlias("first.desktop", "file://" + (_folder / "folder"));
    EXPECT_EQ(
        FileProperties::create(makeAlias("second.desktop", "file://" + (_folder / "first.desktop")))
            .targetPath(),
        _folder / "folder");
}

TEST_F(FilePropertiesMac, AliasOfAFileIsAFile) {
    makeFile("a.jpg");
    EXPECT_EQ(flagsOf(makeAlias("photo.desktop", "file://" + (_folder / "a.jpg"))), 0U);
}

TEST_F(FilePropertiesMac, AliasOfAMissingFolderIsUnresolvedUntilTheFolderIsThere) {
    FileProperties properties =
        FileProperties::create(makeAlias("gone.desktop", "file://" + (_folder / "gone/")));
    EXPECT_EQ(properties.flags(), Alias | UnresolvedAlias);
    EXPECT_EQ(properties.targetPath(), at("gone.desktop"));
    properties.resolveUnresolvedAlias();
    EXPECT_EQ(properties.flags(), Alias | UnresolvedAlias);
    EXPECT_EQ(properties.targetPath(), at("gone.desktop"));
    makeFolder("gone");
    properties.resolveUnresolvedAlias();
    EXPECT_EQ(properties.flags(), Alias);
    EXPECT_EQ(properties.targetPath(), _folder / "gone");
}

TEST_F(FilePropertiesMac, ResolvingAgainChangesNothingOfAResolvedAlias) {
    makeFolder("folder");
    FileProperties properties =
        FileProperties::create(makeAlias("Pictures.desktop", "file://" + (_folder / "folder")));
    const FileProperties before = properties;
    fs::remove(_folder / "folder");
    properties.resolveUnresolvedAlias();
    EXPECT_TRUE(properties == before);
}

TEST_F(FilePropertiesMac, AliasesThatLeadToEachOtherAreNotResolved) {
    makeAlias("one.desktop", "file://" + (_folder / "two.desktop"));
    const std::string two = makeAlias("two.desktop", "file://" + (_folder / "one.desktop"));
    EXPECT_FALSE(FileProperties::create(two).isFlagSet(Directory));
    EXPECT_EQ(FileProperties::create(two).targetPath(), two);
}

TEST_F(FilePropertiesMac, AliasOnANetworkPlaceIsUnresolved) {
    const FileProperties properties =
        FileProperties::create(makeAlias("share.desktop", "smb://server/photos/"));
    EXPECT_EQ(properties.flags(), Alias | UnresolvedAlias);
}

TEST_F(FilePropertiesMac, PipesAndDevicesAreLeftAlone) {
    mkfifo((_folder / "pipe").c_str(), 0600);
    EXPECT_EQ(flagsOf(at("pipe")), 0U);
    EXPECT_EQ(flagsOf("/Volumes/Linux/dev/zero"), 0U);
}

TEST_F(FilePropertiesMac, ProcAndSysAnswer) {
    EXPECT_EQ(flagsOf("/Volumes/Linux/proc/self/status") & Hidden, 0U);
    EXPECT_TRUE(FileProperties::create("/Volumes/Linux/proc/self").isFlagSet(Link));
    EXPECT_EQ(flagsOf("/Volumes/Linux/sys/class") & (Hidden | Directory), Directory);
}

TEST_F(FilePropertiesMac, ItemsOfAReadOnlyDiskAreReadOnly) {
    const std::string folder = makeFolder("mount");
    const test::MountedImage image(_folder / "mount", _folder.path(), "", "loop,ro");
    EXPECT_TRUE(FileProperties::create(folder + "/lost+found").isFlagSet(ReadOnly));
}

TEST_F(FilePropertiesMac, VolumeInVolumesIsAMountPoint) {
    fs::create_directory("/Volumes/Card");
    {
        const test::MountedImage image("/Volumes/Card", _folder.path());
        const FileProperties properties = FileProperties::create("/Volumes/Card");
        EXPECT_EQ(properties.flags(), Directory | MountPoint);
        EXPECT_EQ(properties.title(), "Card");
        EXPECT_EQ(flagsOf("/Volumes/Card/lost+found"), Directory);
    }
    EXPECT_EQ(flagsOf("/Volumes/Card"), Directory);
    fs::remove("/Volumes/Card");
}

TEST_F(FilePropertiesMac, VolumeThatVolumesShowsByALinkIsAMountPointToo) {
    makeFolder("media");
    const test::MountedImage image(_folder / "media", _folder.path());
    fs::create_symlink(_folder / "media", "/Volumes/Stick");
    const FileProperties properties = FileProperties::create("/Volumes/Stick");
    EXPECT_EQ(properties.flags(), Directory | MountPoint);
    EXPECT_EQ(properties.targetPath(), "/Volumes/Stick");
    EXPECT_EQ(flagsOf("/Volumes/Stick/lost+found"), Directory);
    EXPECT_EQ(FileProperties::create(at("media")).targetPath(), "/Volumes/Stick");
    EXPECT_EQ(FileProperties::create(at("media/lost+found")).targetPath(),
              "/Volumes/Stick/lost+found");
    fs::remove("/Volumes/Stick");
}

/// What the user "nobody" sees of a path.
std::string flagsForNobody(const std::string& path) {
    return test::runInChild([&] {
        if (setgid(65534) != 0 || setuid(65534) != 0)
            return std::string("still root");
        return std::to_string(flagsOf(path));
    });
}

TEST_F(FilePropertiesMac, WhatTheUserMayNotWriteIsReadOnly) {
    fs::permissions(_folder.path(), fs::perms(0755));
    const std::string path = makeFile("file");
    fs::permissions(_folder / "file", fs::perms(0644));
    EXPECT_EQ(flagsForNobody(path), std::to_string(ReadOnly));
}

TEST_F(FilePropertiesMac, WhatTheUserMayNotReadIsHidden) {
    fs::permissions(_folder.path(), fs::perms(0755));
    const std::string path = makeFile("file");
    fs::permissions(_folder / "file", fs::perms(0600));
    EXPECT_EQ(flagsForNobody(path), std::to_string(Hidden));
    makeFolder("closed");
    fs::permissions(_folder / "closed", fs::perms(0711));
    EXPECT_EQ(flagsForNobody(at("closed")), std::to_string(Hidden));
}

}  // namespace
}  // namespace tav::ula
