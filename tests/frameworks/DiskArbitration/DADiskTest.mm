// SPDX-License-Identifier: MIT
// The calls as programs make them, on this machine. Needs root: mounts in a space of its own.
#import <Foundation/Foundation.h>

#include <DiskArbitration/DiskArbitration.h>
#include <sys/mount.h>

#include "tests/support/Mounts.h"
#include "tests/support/TemporaryFolder.h"

#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>

namespace {

using namespace tav::test;
namespace fs = std::filesystem;

class DADisk : public testing::Test {
protected:
    void SetUp() override { pool = [[NSAutoreleasePool alloc] init]; }
    void TearDown() override {
        CFRelease(session);
        [pool release];
    }

    NSDictionary* describe(const std::string& name) const {
        DADiskRef disk = DADiskCreateFromBSDName(kCFAllocatorDefault, session, name.c_str());
        CFDictionaryRef description = DADiskCopyDescription(disk);
        CFRelease(disk);
        return
            [reinterpret_cast<NSDictionary*>(const_cast<__CFDictionary*>(description)) autorelease];
    }
    static std::string sourceOf(const std::string& path) {
        struct statfs information {};
        return statfs(path.c_str(), &information) == 0 ? information.f_mntfromname : "";
    }

    NSAutoreleasePool* pool = nil;
    TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};
    DASessionRef session = DASessionCreate(kCFAllocatorDefault);
};

TEST_F(DADisk, ImageIsAVirtualDiskWithItsLabel) {
    const MountedImage image(folder / "my disk", folder.path(), "Holiday");
    NSDictionary* description = describe(image.device());
    EXPECT_TRUE([[description objectForKey:@"DADeviceProtocol"] isEqual:@"Virtual Interface"]);
    EXPECT_TRUE([[description objectForKey:@"DAVolumeNetwork"] isEqual:@(NO)]);
    EXPECT_TRUE([[description objectForKey:@"DAVolumeName"] isEqual:@"Holiday"]);
    EXPECT_TRUE([[description objectForKey:@"DAVolumeKind"] isEqual:@"ext4"]);
    EXPECT_EQ([[description objectForKey:@"DAVolumeUUID"] length], 36u);
    EXPECT_EQ([[description objectForKey:@"DAMediaSize"] unsignedLongLongValue], 4u << 20);
    EXPECT_TRUE([[description objectForKey:@"DAMediaWritable"] boolValue]);
    EXPECT_TRUE([[description objectForKey:@"DAMediaRemovable"] boolValue]);
    EXPECT_TRUE([[description objectForKey:@"DAMediaEjectable"] boolValue]);
    EXPECT_TRUE([[description objectForKey:@"DAMediaWhole"] boolValue]);
    EXPECT_EQ([description objectForKey:@"DAMediaType"], nil);
    NSURL* path = [description objectForKey:@"DAVolumePath"];
    EXPECT_EQ(std::string([[path path] UTF8String]), image.point());
    NSString* name = [description objectForKey:@"DAMediaBSDName"];
    EXPECT_EQ("/dev/" + std::string([name UTF8String]), image.device());
}

TEST_F(DADisk, BsdNameIsTheDevicesAndNothingForOthers) {
    const MountedImage image(folder / "disk", folder.path());
    for (const std::string& name : {image.device(), image.device().substr(5)}) {
        DADiskRef disk = DADiskCreateFromBSDName(kCFAllocatorDefault, session, name.c_str());
        EXPECT_EQ(DADiskGetBSDName(disk), image.device().substr(5));
        CFRelease(disk);
    }
    DADiskRef none = DADiskCreateFromBSDName(kCFAllocatorDefault, session, "host:/none");
    EXPECT_EQ(DADiskGetBSDName(none), nullptr);
    CFRelease(none);
}

TEST_F(DADisk, NoneIsMadeWithoutNameOrSession) {
    EXPECT_EQ(DADiskCreateFromBSDName(kCFAllocatorDefault, session, nullptr), nullptr);
    EXPECT_EQ(DADiskCreateFromBSDName(kCFAllocatorDefault, session, ""), nullptr);
    EXPECT_EQ(DADiskCreateFromBSDName(kCFAllocatorDefault, nullptr, "sda"), nullptr);
    EXPECT_EQ(DADiskCopyDescription(nullptr), nullptr);
}

TEST_F(DADisk, WhatIsNotThereHasNoDescription) {
    EXPECT_EQ(describe("no-such-disk"), nil);
    std::string device;
    {
        const MountedImage image(folder / "disk", folder.path());
        device = image.device();
        EXPECT_NE(describe(device), nil);
    }
    // The loop device may be there still, but nothing is mounted from it.
    EXPECT_EQ([describe(device) objectForKey:@"DAVolumePath"], nil);
}

TEST_F(DADisk, ImageWhoseFileIsDeletedIsDescribedAsBefore) {
    const MountedImage image(folder / "disk", folder.path(), "Gone");
    fs::remove(image.image());
    NSDictionary* description = describe(image.device());
    EXPECT_TRUE([[description objectForKey:@"DADeviceProtocol"] isEqual:@"Virtual Interface"]);
    const std::string name = [[description objectForKey:@"DAMediaName"] UTF8String];
    EXPECT_EQ(folder / name, image.image());
}

TEST_F(DADisk, ShareWithoutAServerIsDescribedAtOnce) {
    const DeadShare share(folder / "share", "ann@host:/a b");
    NSDictionary* description = describe(sourceOf(folder / "share"));
    EXPECT_TRUE([[description objectForKey:@"DAVolumeNetwork"] isEqual:@(YES)]);
    EXPECT_EQ([description objectForKey:@"DADeviceProtocol"], nil);
    EXPECT_EQ([description objectForKey:@"DAMediaBSDName"], nil);
    EXPECT_TRUE([[description objectForKey:@"DAVolumeName"] isEqual:@"share"]);
}

TEST_F(DADisk, NamesOfEveryKindComeThrough) {
    for (const std::string name : {"with blank", "\"quoted\"", "tab\tinside", "new\nline",
                                   "back\\slash", "\xc3\xa4\xe5\x86\x99", "octal\\040"}) {
        const MountedImage image(folder / name, folder.path(), "x");
        NSURL* path = [describe(image.device()) objectForKey:@"DAVolumePath"];
        EXPECT_EQ(std::string([[path path] UTF8String]), folder / name);
    }
}

TEST_F(DADisk, PathThatIsNoTextIsLeftOut) {
    const MountedMemory memory(folder / "\xff\xfe", "latin");
    NSDictionary* description = describe("latin");
    EXPECT_NE(description, nil);
    EXPECT_EQ([description objectForKey:@"DAVolumePath"], nil);
}

using Statfs = DADisk;

TEST_F(Statfs, TellsSourcePointAndType) {
    const MountedImage image(folder / "disk", folder.path(), "", "loop,ro");
    fs::create_symlink(folder / "disk", folder / "link");
    struct statfs information {};
    ASSERT_EQ(statfs((folder / "link/lost+found").c_str(), &information), 0);
    EXPECT_EQ(information.f_mntfromname, image.device());
    EXPECT_EQ(information.f_mntonname, folder / "disk");
    EXPECT_STREQ(information.f_fstypename, "ext4");
    EXPECT_TRUE(information.f_flags & MNT_RDONLY);
}

TEST_F(Statfs, OfMountsOverEachOtherTellsTheLast) {
    const MountedMemory below(folder / "disk", "below");
    const MountedMemory above(folder / "disk", "above");
    EXPECT_EQ(sourceOf(folder / "disk"), "above");
}

TEST_F(Statfs, FailsForWhatIsNotThere) {
    struct statfs information {};
    errno = 0;
    EXPECT_EQ(statfs((folder / "none").c_str(), &information), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(statfs("relative", &information), -1);
    EXPECT_EQ(statfs("", &information), -1);
    EXPECT_EQ(statfs(nullptr, &information), -1);
}

TEST_F(Statfs, ShareWithoutAServerIsToldOfAtOnce) {
    const DeadShare share(folder / "share");
    EXPECT_EQ(sourceOf(folder / "share/whatever"), "user@host:/folder");
}

}  // namespace
