// SPDX-License-Identifier: MIT
#include "AppKit/VolumeFacts.h"

#include "../DiskArbitration/FakeMachine.h"

#include <gtest/gtest.h>

namespace {

using namespace appkit;
using disktest::FakeMachine;

constexpr char kUsb[] = "pci0/usb2/2-1/2-1:1.0/host6/target6:0:0/6:0:0:0/block/sdb";
constexpr char kDisc[] = "pci0/ata2/host1/target1:0:0/1:0:0:0/block/sr0";
constexpr char kCard[] = "pci0/mmc_host/mmc0/mmc0:0001/block/mmcblk0";

TEST(FileSystemInfo, TellsWhatCanBeRemovedWrittenAndUnmounted) {
    FakeMachine machine;
    machine.addDisk(kUsb, "8:16");
    machine.addDisk(kDisc, "11:0");
    machine.mounts += "40 27 8:16 / /media/stick rw - vfat /dev/sdb rw\n"
                      "41 27 11:0 / /media/disc ro - iso9660 /dev/sr0 ro\n"
                      "42 27 0:50 / /mnt/share rw - nfs4 host:/x rw\n";
    const auto stick = fileSystemInfo("/media/stick/none", machine.machine());
    EXPECT_FALSE(stick);  // vfat answers by itself: it has no such file
    const auto share = fileSystemInfo("/mnt/share/any", machine.machine());
    ASSERT_TRUE(share);
    EXPECT_TRUE(share->isRemovable && share->isWritable && share->isUnmountable);
    EXPECT_EQ(share->description, "network volume");
    EXPECT_EQ(share->type, "nfs4");
    const auto root = fileSystemInfo("/", machine.machine());
    ASSERT_TRUE(root);
    EXPECT_FALSE(root->isRemovable || root->isUnmountable);
    EXPECT_TRUE(root->isWritable);
    EXPECT_EQ(root->description, "start-up disk");
}

TEST(FileSystemInfo, NothingIsToldOfWhatLiesOnNothing) {
    FakeMachine machine;
    for (const char* path : {"", "relative", "/none whatsoever"})
        EXPECT_FALSE(fileSystemInfo(path, machine.machine())) << path;
    machine.mounts = "";
    EXPECT_FALSE(fileSystemInfo("/", machine.machine()));
}

// "/tmp" exists on every machine on which this runs.
std::string descriptionOf(FakeMachine& machine, const std::string& line) {
    machine.mounts += "40 27 " + line + "\n";
    const auto info = fileSystemInfo("/tmp", machine.machine());
    return info ? info->description + (info->isWritable ? "" : ", read-only") : "nothing";
}

TEST(FileSystemInfo, HasAWordForEveryKind) {
    FakeMachine disc, image, disk, stick;
    disc.addDisk(kDisc, "11:0");
    image.addDisk("virtual/block/loop0", "7:0");
    disk.addDisk("pci0/nvme/nvme0/nvme0n1", "259:0");
    stick.addDisk(kUsb, "8:16");
    stick.setAttribute(std::string(kUsb) + "/ro", "1");
    EXPECT_EQ(descriptionOf(disc, "11:0 / /tmp ro - iso9660 /dev/sr0 ro"),
              "optical disc, read-only");
    EXPECT_EQ(descriptionOf(image, "7:0 / /tmp rw - ext4 /dev/loop0 rw"), "disk image");
    EXPECT_EQ(descriptionOf(disk, "259:0 / /tmp rw - ext4 /dev/nvme0n1 rw"), "hard disk");
    EXPECT_EQ(descriptionOf(stick, "8:16 / /tmp rw - vfat /dev/sdb rw"),
              "removable disk, read-only");
}

std::string icon(FakeMachine& machine, const std::string& line) {
    machine.mounts += "40 27 " + line + "\n";
    const auto names = volumeIconNames("/media/x", machine.machine(), "/Volumes");
    return names.empty() ? "" : names.front();
}

TEST(VolumeIconNames, FitTheKindOfTheVolume) {
    FakeMachine share, image, disc, card, stick, disk;
    disc.addDisk(kDisc, "11:0");
    image.addDisk("virtual/block/loop0", "7:0");
    card.addDisk(kCard, "179:0");
    stick.addDisk(kUsb, "8:16");
    stick.setAttribute(std::string(kUsb) + "/removable", "1");
    disk.addDisk(kUsb, "8:16");
    EXPECT_EQ(icon(share, "0:50 / /media/x rw - nfs4 host:/x rw"), "folder-remote");
    EXPECT_EQ(icon(image, "7:0 / /media/x rw - ext4 /dev/loop0 rw"), "media-disk-image");
    EXPECT_EQ(icon(disc, "11:0 / /media/x ro - iso9660 /dev/sr0 ro"), "media-optical-cd");
    EXPECT_EQ(icon(card, "179:0 / /media/x rw - vfat /dev/mmcblk0 rw"), "media-flash-sd-mmc");
    EXPECT_EQ(icon(stick, "8:16 / /media/x rw - vfat /dev/sdb rw"), "drive-removable-media-usb");
    EXPECT_EQ(icon(disk, "8:16 / /media/x rw - vfat /dev/sdb rw"), "drive-harddisk-usb");
}

TEST(VolumeIconNames, AreForVolumesOnly) {
    FakeMachine machine;
    machine.mounts += "40 27 0:50 / /mnt/share rw - nfs4 host:/x rw\n"
                      "41 27 0:51 / /run/secret rw - tmpfs tmpfs rw\n";
    const auto names = [&](const char* path) {
        return volumeIconNames(path, machine.machine(), "/Volumes");
    };
    EXPECT_EQ(names("/").front(), "drive-harddisk-system");
    EXPECT_EQ(names("/mnt/share/"), names("/mnt/share"));
    EXPECT_FALSE(names("/mnt/share").empty());
    for (const char* path : {"/mnt/share/file", "/mnt", "/run/secret", "", "relative"})
        EXPECT_TRUE(names(path).empty()) << path;
}

}  // namespace
