// SPDX-License-Identifier: MIT
// Drives of this machine and mounts of every kind. Needs root: mounts in a space of its own.
#include "ula/Drive.h"

#include "tests/support/Mounts.h"
#include "tests/support/Patience.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

namespace tav::test {

namespace {

namespace fs = std::filesystem;
using ula::Drive;

class MountedDrives : public testing::Test {
protected:
    ~MountedDrives() override {
        for (const auto& entry : fs::directory_iterator("/Volumes"))
            if (entry.path().filename() != "Linux")
                fs::remove(entry.path());
    }
    /// Fails the test when it is not listed, or listed twice.
    static Drive listed(const std::string& path) {
        std::vector<Drive> found;
        for (const Drive& drive : Drive::drives())
            if (drive.properties().fullPath() == path)
                found.push_back(drive);
        EXPECT_EQ(found.size(), 1u) << path;
        return found.empty() ? Drive::fromDrivePath("") : found.front();
    }

    /// Disks have a fraction of a second to answer, which a busy machine may not give them.
    static ula::DriveDetails labelled(const Drive& drive) {
        return askUntil([&] { return drive.details(); },
                        [](const auto& details) { return !details.label.empty(); });
    }
    static ula::DriveSpace measured(const Drive& drive) {
        const auto space = askUntil([&] { return drive.space(); },
                                    [](const auto& answer) { return answer.has_value(); });
        EXPECT_TRUE(space);
        return space.value_or(ula::DriveSpace());
    }

    TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};
};

TEST_F(MountedDrives, StartUpDiskIsListedOnceAsAFixedVolume) {
    const Drive disk = listed("/Volumes/Linux");
    EXPECT_EQ(disk.type(), ula::Fixed);
    EXPECT_EQ(disk.properties().title(), "Linux");
    EXPECT_EQ(disk.volumeURL(), "");
    EXPECT_EQ(disk.details().location, "/");
    const ula::DriveSpace space = measured(disk);
    EXPECT_GT(space.total, space.free);
    for (const Drive& drive : Drive::drives())
        EXPECT_NE(drive.properties().fullPath(), "/");
}

TEST_F(MountedDrives, ImageIsVirtualWithEverythingThatIsKnownOfIt) {
    const MountedImage image(folder / "disk", folder.path(), "Holiday");
    fs::create_symlink(image.point(), "/Volumes/Holiday");
    const Drive drive = listed("/Volumes/Holiday");
    EXPECT_EQ(drive.type(), ula::Virtual);
    EXPECT_EQ(drive.volumeURL(), "file://" + image.point() + "/");
    EXPECT_EQ(drive.properties().flags(), 0u);
    const ula::DriveDetails details = labelled(drive);
    EXPECT_EQ(details.fileSystemType, "ext4");
    EXPECT_EQ(details.label, "Holiday");
    EXPECT_EQ(details.uuid.size(), 36u);
    EXPECT_EQ(details.deviceNode, image.device());
    EXPECT_EQ(details.location, image.point());
    const ula::DriveSpace space = measured(drive);
    EXPECT_GT(space.total, 2'000'000u);
    EXPECT_LT(space.total, 4'200'000u);
}

TEST_F(MountedDrives, ReadOnlyImageIsMarked) {
    const MountedImage image("/Volumes/Disc", folder.path(), "", "loop,ro");
    EXPECT_TRUE(listed("/Volumes/Disc").properties().isFlagSet(ula::ReadOnly));
}

TEST_F(MountedDrives, ImageWhoseFileIsDeletedStays) {
    const MountedImage image("/Volumes/Disc", folder.path());
    fs::remove(image.image());
    EXPECT_EQ(listed("/Volumes/Disc").type(), ula::Virtual);
}

TEST_F(MountedDrives, IconIsDrawn) {
    const MountedImage image("/Volumes/Disc", folder.path());
    const Drive drive = listed("/Volumes/Disc");
    const ula::FileIconBitmap* const icon = drive.properties().icon();
    ASSERT_NE(icon, nullptr);
    EXPECT_EQ(icon->width, 48u);
    EXPECT_EQ(icon->size(), 48u * 48 * 4);
    EXPECT_GT(std::count(icon->data.get(), icon->data.get() + icon->size(), 0xff), 500);
}

TEST_F(MountedDrives, ShareWithoutAServerIsListedWithoutItsSize) {
    const DeadShare share(folder / "share");
    fs::create_symlink(share.point(), "/Volumes/Share");
    const Drive drive = listed("/Volumes/Share");
    EXPECT_EQ(drive.type(), ula::Network);
    EXPECT_EQ(drive.volumeURL(), "file://" + share.point() + "/");
    EXPECT_NE(drive.properties().icon(), nullptr);
    EXPECT_EQ(drive.details().fileSystemType, "fuse.sshfs");
    EXPECT_FALSE(drive.space());
    // The second time, too, it comes back.
    EXPECT_FALSE(drive.space());
}

TEST_F(MountedDrives, BoundFolderOfTheStartUpDiskIsFixed) {
    fs::create_directory(folder / "pictures");
    const BoundFolder bound(folder / "pictures", "/Volumes/Pictures");
    EXPECT_EQ(listed("/Volumes/Pictures").type(), ula::Fixed);
}

TEST_F(MountedDrives, OfMountsOverEachOtherTheLastIsListed) {
    const MountedImage below("/Volumes/Disk", folder.path(), "below");
    const MountedImage above("/Volumes/Disk", folder.path(), "above");
    EXPECT_EQ(labelled(listed("/Volumes/Disk")).label, "above");
}

TEST_F(MountedDrives, MemoryDisksOfOneSourceAreToldApart) {
    const MountedMemory one("/Volumes/One");
    const MountedMemory two("/Volumes/Two");
    EXPECT_EQ(listed("/Volumes/One").volumeURL(), "file:///Volumes/One/");
    EXPECT_EQ(listed("/Volumes/Two").volumeURL(), "file:///Volumes/Two/");
}

TEST_F(MountedDrives, NamesOfEveryKindComeThrough) {
    for (const std::string name : {"with blank", "\"quoted\" 'x'", "tab\tinside", "new\nline",
                                   "back\\slash", "Gr\u00fcn \u5199", "octal\\040", "hash#12"}) {
        const MountedMemory memory("/Volumes/" + name);
        const Drive drive = listed("/Volumes/" + name);
        EXPECT_EQ(drive.properties().title(), name);
        EXPECT_EQ(drive.type(), ula::Virtual);
        EXPECT_EQ(drive.details().location, "/Volumes/" + name);
    }
}

TEST_F(MountedDrives, NamesThatAreNoTextAreNotListed) {
    const std::size_t before = Drive::drives().size();
    const MountedMemory memory("/Volumes/\xff\xfe");
    EXPECT_EQ(Drive::drives().size(), before);
}

TEST_F(MountedDrives, VolumeThatIsUnmountedIsGoneFromTheNextList) {
    MountedMemory memory("/Volumes/Memory");
    const std::vector<Drive> before = Drive::drives();
    memory.unmount();
    const std::vector<Drive> after = Drive::drives();
    EXPECT_EQ(after.size() + 1, before.size());
    EXPECT_TRUE(std::all_of(after.begin(), after.end(),
                            [&](const Drive& drive) { return Drive::contains(before, drive); }));
}

TEST_F(MountedDrives, RecordsOfOneStateAreEqual) {
    const MountedImage image("/Volumes/Disk", folder.path());
    EXPECT_EQ(Drive::drives(), Drive::drives());
}

TEST_F(MountedDrives, FiveHundredAreAllListedInTheirOrder) {
    std::vector<std::unique_ptr<MountedMemory>> mounts;
    for (int i = 0; i < 500; ++i)
        mounts.push_back(
            std::make_unique<MountedMemory>("/Volumes/Disk " + std::to_string(500 - i)));
    const std::vector<Drive> drives = Drive::drives();
    ASSERT_GE(drives.size(), 501u);
    auto drive = drives.end() - 500;
    for (const auto& mount : mounts) {
        EXPECT_EQ(drive->properties().fullPath(), mount->point());
        EXPECT_EQ(drive->volumeURL().substr(0, 19), "file:///Volumes/Dis");
        EXPECT_EQ(drive->type(), ula::Virtual);
        ++drive;
    }
    mounts.clear();
}

}  // namespace

}  // namespace tav::test
