// SPDX-License-Identifier: MIT
// The steps by which a drive's record is made, with doubles in place of the workspace and of the
// disk arbitration service.
#include "ula/Drive.h"

#import "ula/ObjCHelper.h"
#include "ula/ScopedARPool.h"

#include "tests/support/ReplacedMethod.h"

#import <AppKit/AppKit.h>
#include <DiskArbitration/DiskArbitration.h>
#include <gtest/gtest.h>
#include <objc/runtime.h>

namespace {

/// What the platform is to answer, and what it was asked.
struct Platform {
    NSArray* paths = nil;
    bool isKnown = true;
    BOOL isRemovable = NO;
    BOOL isWritable = YES;
    NSDictionary* description = nil;
    NSImage* icon = nil;
    std::vector<std::string> calls;
};

Platform* platform = nullptr;

NSArray* mountedPaths(id, SEL) {
    platform->calls.push_back("paths");
    return platform->paths;
}

BOOL information(id, SEL, NSString* path, BOOL* isRemovable, BOOL* isWritable, BOOL*, NSString**,
                 NSString**) {
    platform->calls.push_back("information " + [path toStdString]);
    if (!platform->isKnown)
        return NO;
    *isRemovable = platform->isRemovable;
    *isWritable = platform->isWritable;
    return YES;
}

NSImage* iconOf(id, SEL, NSString* path) {
    platform->calls.push_back("icon " + [path toStdString]);
    return platform->icon;
}

}  // namespace

// Found before the framework's own.
CFDictionaryRef DADiskCopyDescription(DADiskRef disk) {
    const char* const name = DADiskGetBSDName(disk);
    platform->calls.push_back(std::string("description ") + (name != nullptr ? name : "of none"));
    return reinterpret_cast<CFDictionaryRef>([platform->description retain]);
}

namespace tav::ula {
namespace {

/// Puts one method of the workspace in place of another, and back.
class Replaced : public test::ReplacedMethod {
public:
    Replaced(SEL selector, IMP replacement)
        : ReplacedMethod(class_getInstanceMethod([NSWorkspace class], selector), replacement) {}
};

class DriveSteps : public testing::Test {
protected:
    DriveSteps() { platform = &_platform; }
    ~DriveSteps() override { platform = nullptr; }

    /// Of a removable volume with this description.
    DriveType typeWith(NSDictionary* description) {
        _platform.isRemovable = YES;
        _platform.description = description;
        return Drive::fromDrivePath("/").type();
    }

    const ScopedARPool _pool;
    Platform _platform;

private:
    Replaced _paths { @selector(mountedLocalVolumePaths), reinterpret_cast<IMP>(mountedPaths) };
    Replaced _information {
        @selector(getFileSystemInfoForPath:isRemovable:isWritable:isUnmountable:description:type:),
            reinterpret_cast<IMP>(information)
    };
    Replaced _icon { @selector(iconForFile:), reinterpret_cast<IMP>(iconOf) };
};

TEST_F(DriveSteps, NetworkVolumeThatIsNotRemovableIsFixed) {
    _platform.description = @{@"DAVolumeNetwork" : @(YES), @"DAVolumePath" : @"x"};
    const Drive drive = Drive::fromDrivePath("/");
    EXPECT_EQ(drive.type(), Fixed);
    EXPECT_EQ(drive.volumeURL(), "");
}

TEST_F(DriveSteps, DiskImageOfADiscIsVirtual) {
    EXPECT_EQ(typeWith(@{
                  @"DADeviceProtocol" : @"Virtual Interface",
                  @"DAVolumeNetwork" : @(YES),
                  @"DAMediaType" : @"CD-ROM"
              }),
              Virtual);
}

TEST_F(DriveSteps, NetworkComesBeforeTheMedium) {
    EXPECT_EQ(typeWith(@{@"DAVolumeNetwork" : @(YES), @"DAMediaType" : @"CD-ROM"}), Network);
    EXPECT_EQ(typeWith(@{@"DAVolumeNetwork" : @"yes", @"DAMediaType" : @"CD-ROM"}), Optical);
    EXPECT_EQ(typeWith(@{@"DAVolumeNetwork" : @(NO)}), Removable);
}

TEST_F(DriveSteps, CdAndDvdAreOpticalAndOtherMediaAreNot) {
    EXPECT_EQ(typeWith(@{@"DAMediaType" : @"CD-ROM"}), Optical);
    EXPECT_EQ(typeWith(@{@"DAMediaType" : @"DVD-ROM"}), Optical);
    EXPECT_EQ(typeWith(@{@"DAMediaType" : @"BD-ROM"}), Removable);
    EXPECT_EQ(typeWith(@{@"DAMediaType" : @7, @"DADeviceProtocol" : @"USB"}), Removable);
}

TEST_F(DriveSteps, RemovableVolumeWithoutADescriptionIsRemovable) {
    EXPECT_EQ(typeWith(nil), Removable);
    EXPECT_EQ(Drive::fromDrivePath("/Volumes/X").volumeURL(), "");
}

TEST_F(DriveSteps, VolumeUrlIsTheTextOfTheDescribedPath) {
    _platform.isRemovable = YES;
    _platform.description =
        @{@"DAVolumePath" : [NSURL URLWithString:@"file:///Volumes/My%20Disk/"]};
    EXPECT_EQ(Drive::fromDrivePath("/").volumeURL(), "file:///Volumes/My%20Disk/");
}

TEST_F(DriveSteps, PropertiesAreThoseOfThePath) {
    _platform.isWritable = NO;
    const Drive drive = Drive::fromDrivePath("/Volumes/Gr\u00fcn");
    EXPECT_EQ(drive.properties().name(), "/Volumes/Gr\u00fcn");
    EXPECT_EQ(drive.properties().targetPath(), "/Volumes/Gr\u00fcn");
    EXPECT_EQ(drive.properties().fullPath(), "/Volumes/Gr\u00fcn");
    EXPECT_EQ(drive.properties().title(), "Gr\u00fcn");
    EXPECT_EQ(drive.properties().flags(), ReadOnly);
    EXPECT_EQ(drive.properties().icon(), nullptr);
    EXPECT_EQ(drive.mountPoint(), "/Volumes");
    _platform.isWritable = YES;
    EXPECT_EQ(Drive::fromDrivePath("/Volumes/Gr\u00fcn").properties().flags(), 0u);
}

TEST_F(DriveSteps, IconIsTheFirstBitmapOfTheImage) {
    NSImage* const image = [[[NSImage alloc] initWithSize:NSMakeSize(2, 1)] autorelease];
    for (const int value : {7, 8}) {
        NSBitmapImageRep* const bitmap =
            [[[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nullptr
                                                     pixelsWide:2
                                                     pixelsHigh:1
                                                  bitsPerSample:8
                                                samplesPerPixel:4
                                                       hasAlpha:YES
                                                       isPlanar:NO
                                                 colorSpaceName:NSDeviceRGBColorSpace
                                                    bytesPerRow:12
                                                   bitsPerPixel:32] autorelease];
        memset([bitmap bitmapData], value, 12);
        [image addRepresentation:[[[NSCustomImageRep alloc] init] autorelease]];
        [image addRepresentation:bitmap];
    }
    _platform.icon = image;
    const Drive drive = Drive::fromDrivePath("/");
    const FileIconBitmap* const icon = drive.properties().icon();
    ASSERT_NE(icon, nullptr);
    EXPECT_EQ(icon->width, 2u);
    EXPECT_EQ(icon->height, 1u);
    EXPECT_EQ(icon->bytesPerRow, 12u);
    EXPECT_EQ(icon->bitsPerPixel, 32u);
    EXPECT_EQ(icon->data[0], 7);
    EXPECT_EQ(icon->data[11], 7);
}

TEST_F(DriveSteps, PlatformIsAskedInTheOrderOfTheSteps) {
    _platform.paths = @[ @"/Volumes/X" ];
    Drive::drivesImplMac();
    // There is no such mount, so nothing is to be described.
    EXPECT_EQ(_platform.calls,
              (std::vector<std::string>{"paths", "information /Volumes/X", "icon /Volumes/X"}));
    _platform.calls.clear();
    Drive::fromDrivePath("/");
    ASSERT_EQ(_platform.calls.size(), 3u);
    EXPECT_EQ(_platform.calls[1].substr(0, 12), "description ");
}

TEST_F(DriveSteps, OnlyTheStartUpDiskAndVolumesAreListed) {
    _platform.paths = @[
        @"/", @"/Volumes/", @"/Volumes", @"/home", @"/Volumes/A", @"/volumes/B", @"/Volumesx/C",
        @"/mnt/Volumes/D", @"/Volumes/E/inner"
    ];
    std::vector<std::string> paths;
    for (const Drive& drive : Drive::drives())
        paths.push_back(drive.properties().fullPath());
    ASSERT_EQ(paths.size(), 3u);
    EXPECT_EQ(paths[0].substr(0, 9), "/Volumes/");
    EXPECT_EQ(paths[1], "/Volumes/A");
    EXPECT_EQ(paths[2], "/Volumes/E/inner");
}

TEST_F(DriveSteps, NothingMountedIsAnEmptyList) {
    EXPECT_TRUE(Drive::drives().empty());
    _platform.paths = @[];
    EXPECT_TRUE(Drive::drives().empty());
}

// Unmounted between the listing and the record.
TEST_F(DriveSteps, VolumeThatHasGoneIsFixedAndReadOnly) {
    _platform.isKnown = false;
    const Drive drive = Drive::fromDrivePath("/Volumes/gone");
    EXPECT_EQ(drive.type(), Fixed);
    EXPECT_EQ(drive.properties().flags(), ReadOnly);
    EXPECT_EQ(drive.properties().title(), "gone");
    EXPECT_FALSE(drive.space());
    EXPECT_EQ(drive.details().location, "");
}

TEST_F(DriveSteps, PathsThatAreNoTextOrEmptyHaveARecord) {
    for (const std::string path : {"", "\xff\xfe", "relative"}) {
        const Drive drive = Drive::fromDrivePath(path);
        EXPECT_EQ(drive.type(), Fixed);
        EXPECT_EQ(drive.properties().fullPath(), path);
        EXPECT_FALSE(drive.space());
        EXPECT_EQ(drive.details().fileSystemType, "");
    }
}

FileProperties propertiesOf(const std::string& path) {
    FileProperties properties;
    properties.setFullPath(path);
    return properties;
}

TEST(DriveValue, HoldsWhatItWasGiven) {
    const Drive drive(Optical, propertiesOf("/Volumes/A"), "/mount");
    EXPECT_EQ(drive.type(), Optical);
    EXPECT_EQ(drive.properties(), propertiesOf("/Volumes/A"));
    EXPECT_EQ(drive.mountPoint(), "/mount");
    EXPECT_EQ(drive.volumeURL(), "");
    static_assert(sizeof(DriveType) == 4);
    static_assert(Removable == 2 && Fixed == 3 && Network == 4 && Optical == 5 && Virtual == 6);
}

TEST(DriveValue, IsEqualByTypePropertiesAndMountPoint) {
    const Drive drive(Fixed, propertiesOf("/a"), "/Volumes");
    EXPECT_EQ(drive, Drive(Fixed, propertiesOf("/a"), "/Volumes"));
    EXPECT_FALSE(drive == Drive(Network, propertiesOf("/a"), "/Volumes"));
    EXPECT_FALSE(drive == Drive(Fixed, propertiesOf("/b"), "/Volumes"));
    EXPECT_FALSE(drive == Drive(Fixed, propertiesOf("/a"), "/media"));
}

TEST(DriveValue, ContainsFindsAnEqualOne) {
    const Drive first(Fixed, propertiesOf("/a"), "/Volumes");
    const Drive second(Fixed, propertiesOf("/b"), "/Volumes");
    EXPECT_FALSE(Drive::contains({}, first));
    EXPECT_TRUE(Drive::contains({second, first}, first));
    EXPECT_FALSE(Drive::contains({second}, first));
}

TEST_F(DriveSteps, RecordsThatDifferOnlyInTheVolumeUrlAreEqual) {
    _platform.isRemovable = YES;
    _platform.description = @{@"DAVolumePath" : @"one"};
    const Drive one = Drive::fromDrivePath("/");
    _platform.description = @{@"DAVolumePath" : @"two"};
    const Drive two = Drive::fromDrivePath("/");
    EXPECT_NE(one.volumeURL(), two.volumeURL());
    EXPECT_EQ(one, two);
    EXPECT_TRUE(Drive::contains({one}, two));
}

TEST_F(DriveSteps, DumpHasALineForEachDrive) {
    _platform.paths = @[ @"/Volumes/A", @"/Volumes/B c" ];
    testing::internal::CaptureStdout();
    Drive::dump();
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Name:/Volumes/A Title:A MountPoint:/Volumes\n"
              "Name:/Volumes/B c Title:B c MountPoint:/Volumes\n");
}

TEST(DriveValue, ListOfTheOtherPlatformIsEmpty) {
    EXPECT_TRUE(Drive::drivesImplWin().empty());
}

}  // namespace
}  // namespace tav::ula
