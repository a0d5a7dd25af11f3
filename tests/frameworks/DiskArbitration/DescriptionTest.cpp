// SPDX-License-Identifier: MIT
#include "FakeMachine.h"

#include <gtest/gtest.h>

namespace {

using namespace diskarbitration;
using disktest::FakeMachine;

constexpr char kUsb[] = "pci0000:00/0000:00:14.0/usb2/2-1/2-1:1.0/host6/target6:0:0/6:0:0:0/block";
constexpr char kSata[] = "pci0000:00/0000:00:17.0/ata1/host0/target0:0:0/0:0:0:0/block";
constexpr char kDisc[] = "pci0000:00/0000:00:17.0/ata2/host1/target1:0:0/1:0:0:0/block/sr0";
constexpr char kCard[] = "pci0000:00/0000:00:1d.0/mmc_host/mmc0/mmc0:0001/block/mmcblk0";

TEST(Description, UsbStickIsRemovableWithARemovableMedium) {
    FakeMachine machine;
    const std::string disk = std::string(kUsb) + "/sdb";
    machine.addDisk(disk, "8:16");
    machine.addPartition(disk + "/sdb1", "8:17");
    machine.setAttribute(disk + "/removable", "1");
    machine.setAttribute(disk + "/device/vendor", "SanDisk ");
    machine.setAttribute(disk + "/device/model", "Ultra");
    machine.setAttribute(disk + "/sdb1/size", "2048");
    machine.mounts += "40 27 8:17 / /media/a rw - vfat /dev/sdb1 rw\n";
    const Description stick = machine.at("/media/a");
    EXPECT_EQ(stick.protocol, "USB");
    EXPECT_TRUE(stick.isRemovable);
    EXPECT_FALSE(stick.isNetwork);
    ASSERT_TRUE(stick.device);
    EXPECT_EQ(stick.device->name, "sdb1");
    EXPECT_EQ(stick.device->vendor, "SanDisk");
    EXPECT_EQ(stick.device->model, "Ultra");
    EXPECT_EQ(stick.device->size, 1048576u);
    EXPECT_TRUE(stick.device->hasRemovableMedium);
    EXPECT_FALSE(stick.device->isWhole);
    EXPECT_FALSE(stick.device->isInternal);
}

TEST(Description, UsbDiskIsRemovableThoughItsMediumIsNot) {
    FakeMachine machine;
    machine.addDisk(std::string(kUsb) + "/sdb", "8:16");
    machine.setAttribute(std::string(kUsb) + "/sdb/removable", "0");
    machine.mounts += "40 27 8:16 / /media/a rw - ext4 /dev/sdb rw\n";
    EXPECT_TRUE(machine.at("/media/a").isRemovable);
    EXPECT_FALSE(machine.at("/media/a").device->hasRemovableMedium);
    EXPECT_TRUE(machine.at("/media/a").device->isWhole);
}

TEST(Description, InternalDisksAreNotRemovable) {
    struct {
        std::string place;
        const char* driver;
        const char* protocol;
    } const disks[] = {
        {std::string(kSata) + "/sda", "ahci", "SATA"},
        {std::string(kSata) + "/sda", "pata_amd", "ATA"},
        {std::string(kSata) + "/sda", "ata_piix", "ATA"},
        {"pci0000:00/0000:01:00.0/nvme/nvme0/nvme0n1", "", "PCI-Express"},
        {"virtual/nvme-subsystem/nvme-subsys0/nvme0n1", "", "PCI-Express"},
        {"pci0000:00/0000:02:00.0/host2/target2:0:0/2:0:0:0/block/sdc", "", "SCSI"},
        {"platform/host3/session1/target3:0:0/3:0:0:1/block/sdd", "", "iSCSI"},
        {"pci0000:00/host4/port-4:0/end_device-4:0/target4:0:0/4:0:0:0/block/sde", "", "SAS"},
        {"pci0000:00/host5/rport-5:0-1/target5:0:0/5:0:0:0/block/sdf", "",
         "Fibre Channel Interface"},
        {"pci0000:00/0000:00:04.0/virtio1/block/vdb", "", "PCI"}};
    for (const auto& disk : disks) {
        FakeMachine machine;
        machine.addDisk(disk.place, "8:0");
        machine.setAttribute("pci0000:00/0000:00:17.0/ata1/host0/scsi_host/host0/proc_name",
                             disk.driver);
        machine.mounts += "40 27 8:0 / /data rw - ext4 /dev/x rw\n";
        EXPECT_EQ(machine.at("/data").protocol, disk.protocol) << disk.place;
        EXPECT_FALSE(machine.at("/data").isRemovable) << disk.place;
        EXPECT_TRUE(machine.at("/data").device->isInternal) << disk.place;
    }
}

TEST(Description, CardsAreRemovableAndSolderedMemoryIsNot) {
    for (const char* type : {"SD", "MMC"}) {
        FakeMachine machine;
        machine.addDisk(kCard, "179:0");
        machine.setAttribute("pci0000:00/0000:00:1d.0/mmc_host/mmc0/mmc0:0001/type", type);
        machine.mounts += "40 27 179:0 / /media/card rw - exfat /dev/mmcblk0 rw\n";
        const bool isCard = std::string(type) == "SD";
        EXPECT_EQ(machine.at("/media/card").isRemovable, isCard);
        EXPECT_EQ(machine.at("/media/card").protocol, isCard ? "Secure Digital" : "MMC");
    }
}

TEST(Description, FireWireAndOutsidePortsAreRemovable) {
    FakeMachine machine;
    machine.addDisk("pci0000:00/0000:03:00.0/fw1/fw1.0/host7/target7:0:0/7:0:0:0/block/sdg",
                    "8:96");
    machine.addDisk("pci0000:00/0000:04:00.0/0000:05:00.0/nvme/nvme1/nvme1n1", "259:5");
    machine.setAttribute("pci0000:00/0000:04:00.0/removable", "removable");
    machine.mounts += "40 27 8:96 / /media/f rw - hfsplus /dev/sdg rw\n"
                      "41 27 259:5 / /media/t rw - ext4 /dev/nvme1n1 rw\n";
    EXPECT_EQ(machine.at("/media/f").protocol, "FireWire");
    EXPECT_TRUE(machine.at("/media/f").isRemovable);
    EXPECT_EQ(machine.at("/media/t").protocol, "PCI-Express");
    EXPECT_TRUE(machine.at("/media/t").isRemovable);
    EXPECT_FALSE(machine.at("/media/t").device->isInternal);
}

TEST(Description, LoopMemoryAndNetworkBlockDevicesAreVirtual) {
    for (const std::string name : {"loop0", "ram0", "zram1", "nbd3"}) {
        FakeMachine machine;
        machine.addDisk("virtual/block/" + name, "7:0");
        machine.mounts += "40 27 7:0 / /mnt/x rw - ext4 /dev/" + name + " rw\n";
        EXPECT_EQ(machine.at("/mnt/x").protocol, "Virtual Interface") << name;
        EXPECT_TRUE(machine.at("/mnt/x").isRemovable) << name;
    }
}

TEST(Description, ImageKeepsTheNameOfItsFileWhenThatIsDeleted) {
    FakeMachine machine;
    machine.addDisk("virtual/block/loop0", "7:0");
    machine.setAttribute("virtual/block/loop0/loop/backing_file", "/tmp/My Disk.img (deleted)");
    machine.mounts += "40 27 7:0 / /mnt/x ro - iso9660 /dev/loop0 ro\n";
    EXPECT_EQ(machine.at("/mnt/x").device->image, "/tmp/My Disk.img");
    EXPECT_EQ(machine.at("/mnt/x").protocol, "Virtual Interface");
}

TEST(Description, MappedDevicesAreWhatTheyLieOn) {
    FakeMachine machine;
    machine.addDisk(std::string(kUsb) + "/sdb", "8:16");
    machine.addPartition(std::string(kUsb) + "/sdb/sdb2", "8:18");
    machine.addDisk("virtual/block/loop0", "7:0");
    for (const char* name : {"dm-0", "dm-1", "dm-2"})
        machine.addDisk(std::string("virtual/block/") + name, std::string("253:") + name[3]);
    machine.putOn("virtual/block/dm-0", "sdb2");
    machine.putOn("virtual/block/dm-1", "dm-0");
    machine.putOn("virtual/block/dm-2", "loop0");
    machine.linkNode("mapper/vault", "dm-1");
    machine.mounts += "40 27 253:1 / /mnt/usb rw - ext4 /dev/mapper/vault rw\n"
                      "41 27 253:2 / /mnt/loop rw - ext4 /dev/mapper/other rw\n";
    EXPECT_EQ(machine.at("/mnt/usb").protocol, "USB");
    EXPECT_EQ(machine.at("/mnt/usb").device->name, "dm-1");
    EXPECT_EQ(machine.at("/mnt/loop").protocol, "Virtual Interface");
    EXPECT_EQ(describeName("/dev/mapper/vault", machine.machine())->mount->point, "/mnt/usb");
}

TEST(Description, MappedDevicesThatLieOnEachOtherInACircleHaveAnAnswer) {
    FakeMachine machine;
    machine.addDisk("virtual/block/dm-0", "253:0");
    machine.addDisk("virtual/block/dm-1", "253:1");
    machine.putOn("virtual/block/dm-0", "dm-1");
    machine.putOn("virtual/block/dm-1", "dm-0");
    machine.mounts += "40 27 253:0 / /mnt/x rw - ext4 /dev/dm-0 rw\n";
    EXPECT_EQ(machine.at("/mnt/x").protocol, "Virtual Interface");
}

// Their number is the file system's own.
TEST(Description, DiskOfAFileSystemWithItsOwnNumberIsFoundByName) {
    FakeMachine machine;
    machine.addDisk(std::string(kUsb) + "/sdb", "8:16");
    machine.mounts += "40 27 0:44 /@data /media/a rw - btrfs /dev/sdb rw\n"
                      "41 27 0:45 / /pool rw - zfs pool/set rw\n";
    EXPECT_EQ(machine.at("/media/a").protocol, "USB");
    EXPECT_EQ(machine.at("/pool").protocol, "");
    EXPECT_FALSE(machine.at("/pool").isRemovable);
}

std::string mediaType(FakeMachine& machine) {
    machine.mounts += "40 27 11:0 / /media/disc ro - udf /dev/sr0 ro\n";
    return machine.at("/media/disc").device->mediaType;
}

TEST(Description, DiscIsWhatUdevSaysOfIt) {
    struct {
        const char* property;
        const char* type;
    } const discs[] = {{"ID_CDROM_MEDIA_CD", "CD-ROM"},
                       {"ID_CDROM_MEDIA_CD_R", "CD-ROM"},
                       {"ID_CDROM_MEDIA_DVD", "DVD-ROM"},
                       {"ID_CDROM_MEDIA_DVD_PLUS_RW", "DVD-ROM"},
                       {"ID_CDROM_MEDIA_BD", "BD-ROM"}};
    for (const auto& disc : discs) {
        FakeMachine machine;
        machine.addDisk(kDisc, "11:0");
        machine.udev["11:0"] = {
            {"ID_CDROM", "1"}, {"ID_CDROM_CD", "1"}, {"ID_CDROM_DVD", "1"}, {disc.property, "1"}};
        EXPECT_EQ(mediaType(machine), disc.type) << disc.property;
        EXPECT_TRUE(machine.at("/media/disc").isRemovable);
    }
}

TEST(Description, DiscIsToldByItsSizeWithoutUdev) {
    for (auto [sectors, type] : {std::pair{"1400000", "CD-ROM"}, std::pair{"8000000", "DVD-ROM"},
                                 std::pair{"48000000", "BD-ROM"}, std::pair{"0", "DVD-ROM"}}) {
        FakeMachine machine;
        machine.addDisk(kDisc, "11:0");
        machine.setAttribute(std::string(kDisc) + "/size", sectors);
        EXPECT_EQ(mediaType(machine), type) << sectors;
    }
}

TEST(Description, FileSystemsWithoutADiskAreToldByTheirType) {
    struct {
        const char* type;
        const char* source;
        bool isNetwork;
        const char* protocol;
    } const mounts[] = {{"nfs4", "host:/export", true, ""},
                        {"cifs", "//host/share", true, ""},
                        {"smb3", "//host/share", true, ""},
                        {"9p", "shared", true, ""},
                        {"ceph", "a,b:/", true, ""},
                        {"fuse.sshfs", "ann@host:", true, ""},
                        {"fuse.davfs", "https://host/dav", true, ""},
                        {"fuse.gvfsd-fuse", "gvfsd-fuse", true, ""},
                        {"fuse.rclone", "remote:", true, ""},
                        {"fuse", "https://host/dav", true, ""},
                        {"fuse.unheard-of", "ann@host:/home", true, ""},
                        {"fuse.jmtpfs", "jmtpfs", false, "USB"},
                        {"fuse.squashfuse", "squashfuse", false, "Virtual Interface"},
                        {"fuse.encfs", "/home/a:b", false, "Virtual Interface"},
                        {"tmpfs", "tmpfs", false, "Virtual Interface"},
                        {"overlay", "overlay", false, "Virtual Interface"}};
    for (const auto& mount : mounts) {
        FakeMachine machine;
        machine.mounts +=
            std::string("40 27 0:50 / /x rw - ") + mount.type + " " + mount.source + " rw\n";
        const Description described = machine.at("/x");
        EXPECT_EQ(described.isNetwork, mount.isNetwork) << mount.type;
        EXPECT_EQ(described.protocol, mount.protocol) << mount.type;
        EXPECT_TRUE(described.isRemovable) << mount.type;
        EXPECT_FALSE(described.device) << mount.type;
    }
}

// A disk by ntfs-3g is a disk.
TEST(Description, ProcessThatReadsADiskIsThatDisk) {
    FakeMachine machine;
    machine.addDisk(std::string(kSata) + "/sda", "8:0");
    machine.addPartition(std::string(kSata) + "/sda/sda3", "8:3");
    machine.mounts += "40 27 8:3 / /mnt/win rw - fuseblk /dev/sda3 rw\n"
                      "41 27 0:60 / /mnt/ext rw - fuse.fuse2fs /dev/sda3 rw\n";
    EXPECT_FALSE(machine.at("/mnt/win").isRemovable);
    EXPECT_FALSE(machine.at("/mnt/ext").isRemovable);
    EXPECT_EQ(machine.at("/mnt/ext").device->name, "sda3");
}

TEST(Description, StartUpDiskIsNeverRemovableHoweverItIsAttached) {
    FakeMachine machine;
    machine.addDisk(std::string(kUsb) + "/sda", "8:0");
    machine.mounts = "27 1 8:0 / / rw - ext4 /dev/sda rw\n"
                     "40 27 8:0 /home /Volumes/Home rw - ext4 /dev/sda rw\n";
    EXPECT_FALSE(machine.at("/").isRemovable);
    EXPECT_FALSE(machine.at("/Volumes/Home").isRemovable);
    FakeMachine container;
    container.mounts = "27 1 0:60 / / rw - overlay overlay rw\n";
    EXPECT_FALSE(container.at("/").isRemovable);
}

TEST(DescribeName, TakesTheFormsOfADevicesName) {
    FakeMachine machine;
    machine.addDisk(std::string(kUsb) + "/sdb", "8:16");
    machine.addPartition(std::string(kUsb) + "/sdb/sdb1", "8:17");
    machine.mounts += "40 27 8:17 / /media/a rw - vfat /dev/sdb1 rw\n";
    for (const char* name : {"sdb1", "/dev/sdb1"})
        EXPECT_EQ(describeName(name, machine.machine())->mount->point, "/media/a") << name;
    const auto whole = describeName("sdb", machine.machine());
    ASSERT_TRUE(whole);
    EXPECT_FALSE(whole->mount);
    EXPECT_EQ(whole->device->name, "sdb");
    EXPECT_TRUE(whole->isRemovable);
}

TEST(DescribeName, KnowsNothingOfWhatIsNotThere) {
    FakeMachine machine;
    for (const char* name :
         {"", "sdz", "/dev/sdz", "/dev/", "..", "../vda", "host:/none", "#", "/dev/vda#99"})
        EXPECT_FALSE(describeName(name, machine.machine())) << name;
}

TEST(DescribeName, TellsMountsOfOneSourceApart) {
    FakeMachine machine;
    machine.mounts += "40 27 0:50 / /Volumes/A rw - tmpfs tmpfs rw\n"
                      "41 27 0:51 / /Volumes/B rw - tmpfs tmpfs rw\n"
                      "42 27 0:52 / /Volumes/C rw - fuse.sshfs ann@host:/a#b rw\n";
    const Machine here = machine.machine();
    const coreservices::MountList mounts = here.mounts();
    for (const coreservices::Mount& mount : *mounts)
        EXPECT_EQ(describeName(mountedFromName(mount, *mounts), here)->mount->id, mount.id);
    EXPECT_EQ(mountedFromName((*mounts)[0], *mounts), "/dev/vda");
    EXPECT_EQ(mountedFromName((*mounts)[2], *mounts), "tmpfs#41");
    EXPECT_EQ(mountedFromName((*mounts)[3], *mounts), "ann@host:/a#b");
}

class Names : public testing::Test {
protected:
    Names() {
        machine.addDisk(std::string(kUsb) + "/sdb", "8:16");
        machine.mounts += "40 27 8:16 / /media/folder rw - ext4 /dev/sdb rw\n";
        machine.udisks["sdb"] = {"from udisks", "1"};
        machine.onDisk["sdb"] = {"on disk", "2"};
    }
    FakeMachine machine;
};

TEST_F(Names, ComeFromUdevWithItsEscapesUndone) {
    machine.udev["8:16"] = {{"ID_FS_LABEL_ENC", "My\\x20Disk\\x2f\\xc3\\xa4\\x"},
                            {"ID_FS_UUID_ENC", "12-AB"}};
    EXPECT_EQ(machine.namesAt("/media/folder").label, "My Disk/\xc3\xa4\\x");
    EXPECT_EQ(machine.namesAt("/media/folder").uuid, "12-AB");
}

TEST_F(Names, NothingElseIsAskedWhereUdevKnowsTheDevice) {
    machine.udev["8:16"] = {{"ID_BUS", "usb"}};
    EXPECT_EQ(machine.namesAt("/media/folder").label, "folder");
    EXPECT_EQ(machine.namesAt("/media/folder").uuid, "");
}

TEST_F(Names, ComeFromTheLinksToTheNode) {
    machine.linkNode("disk/by-label/My\\x20Disk", "sdb");
    machine.linkNode("disk/by-uuid/12-AB", "sdb");
    machine.linkNode("disk/by-uuid/dangling", "sdz");
    EXPECT_EQ(machine.namesAt("/media/folder").label, "My Disk");
    EXPECT_EQ(machine.namesAt("/media/folder").uuid, "12-AB");
}

TEST_F(Names, ComeFromUdisksBeforeTheDiskIsRead) {
    EXPECT_EQ(machine.namesAt("/media/folder").label, "from udisks");
    machine.udisks.clear();
    EXPECT_EQ(machine.namesAt("/media/folder").label, "on disk");
    EXPECT_EQ(machine.namesAt("/media/folder").uuid, "2");
    machine.onDisk.clear();
    EXPECT_EQ(machine.namesAt("/media/folder").label, "folder");
}

TEST_F(Names, OfWhatIsNoDiskAreThoseOfTheFolder) {
    machine.mounts += "41 27 0:50 / /mnt/My\\040Share rw - nfs host:/x rw\n";
    EXPECT_EQ(machine.namesAt("/mnt/My Share").label, "My Share");
}

}  // namespace
