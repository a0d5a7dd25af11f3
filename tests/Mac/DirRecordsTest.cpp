// SPDX-License-Identifier: MIT
// A child of a listing and the record of its path are the same, whatever it is.
#include "FolderTest.h"

#include <random>
#include <stdexcept>
#include <sys/mount.h>
#include <sys/stat.h>

namespace tav::ula {
namespace {

namespace fs = std::filesystem;

class DirRecords : public FolderTest {};

/// Items of every kind, under every name and mode that matters.
void makeEverything(const fs::path& folder, unsigned seed) {
    std::mt19937 random(seed);
    constexpr const char* kEndings[] = {"", ".jpg", ".app", ".desktop", ".bundle", " alias", ".h"};
    constexpr unsigned kModes[] = {0644, 0444, 0600, 0000, 0755, 0200};
    std::string hidden;
    for (int i = 0; i < 400; ++i) {
        const std::string name = (random() % 9 == 0 ? "." : "") + std::to_string(i) +
                                 (random() % 7 == 0 ? "\u00fc \xFF" : "") +
                                 kEndings[random() % std::size(kEndings)];
        const fs::path item = folder / name;
        switch (random() % 6) {
        case 0:
            fs::create_directory(item);
            break;
        case 1:
            fs::create_symlink(std::to_string(random() % 400), item);
            continue;
        case 2:
            mkfifo(item.c_str(), 0600);
            break;
        default:
            test::writeFile(item, std::string(random() % 600, 'x'));
        }
        fs::permissions(item, fs::perms(kModes[random() % std::size(kModes)]));
        if (random() % 3 == 0 && chown(item.c_str(), 65534, 65534) != 0)
            throw std::runtime_error("chown");
        if (random() % 5 == 0)
            hidden += name + "\n";
    }
    test::writeFile(folder / ".hidden", hidden);
}

/// The paths of the children whose records differ from those of their paths.
std::string differences(const std::string& path) {
    std::string different;
    Dir dir(path);
    for (const Dir* child : dir.children(false)) {
        if (!(child->properties() == FileProperties::create(child->fullPath())))
            different += child->fullPath() + "\n";
    }
    return dir.children(false).empty() ? "no children" : different;
}

TEST_F(DirRecords, ChildHasTheVeryRecordOfItsPath) {
    fs::permissions(_folder.path(), fs::perms(0755));
    makeEverything(_folder.path(), 1);
    EXPECT_EQ(differences(path()), "");
    EXPECT_EQ(asNobody([this] { return differences(path()); }), "");
}

TEST_F(DirRecords, ChildHasTheVeryRecordOfItsPathInAFolderGivenOtherwise) {
    makeEverything(_folder.path(), 2);
    link("self", ".");
    EXPECT_EQ(differences(_folder.path()), "");
    EXPECT_EQ(differences(path() + "/self"), "");
    EXPECT_EQ(differences("/Volumes/../Volumes/Linux" + _folder.path().string()), "");
}

TEST_F(DirRecords, ChildHasTheVeryRecordOfItsPathOnAReadOnlyDisk) {
    const test::MountedImage image(_folder / "mount", _folder.path());
    makeEverything(image.point(), 3);
    ASSERT_EQ(mount(nullptr, image.point().c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
    EXPECT_EQ(differences(path() + "/mount"), "");
}

TEST_F(DirRecords, ChildHasTheVeryRecordOfItsPathInTheSystemsFolders) {
    for (const char* place : {"/", "/Volumes/Linux", "/Volumes", "/Volumes/Linux/dev",
                              "/Volumes/Linux/sys/class", "/Volumes/Linux/etc"})
        EXPECT_EQ(differences(place), "") << place;
}

TEST_F(DirRecords, KeptFoldersAreTheSameWhicheverWayTheyAreFound) {
    makeEverything(_folder.path(), 4);
    Dir all(path());
    std::vector<std::string> wanted;
    for (const Dir* child : all.children(false)) {
        if (!child->isHidden() && (child->isDir() || child->isAlias() || child->isLink()))
            wanted.push_back(child->fullPath());
    }
    Dir folders(path());
    std::vector<std::string> found;
    for (const Dir* child : folders.children(true))
        found.push_back(child->fullPath());
    EXPECT_EQ(found, wanted);
    EXPECT_EQ(Dir(path()).containsChildren(true), !wanted.empty());
}

}  // namespace
}  // namespace tav::ula
