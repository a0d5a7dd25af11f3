// SPDX-License-Identifier: MIT
#include "ula/Drive.h"

#include "ula/ScopedARPool.h"
#include "ula/src/Mac/Bridge.h"
#include "ula/src/Mac/CFOwner.h"
#include "ula/src/Mac/VolumesFolder.h"

#import <AppKit/AppKit.h>
#include <DiskArbitration/DiskArbitration.h>
#include <sys/mount.h>

namespace tav::ula {

namespace {

/// What the workspace says of the file system at a path.
struct FileSystemInformation {
    bool isRemovable = false;
    bool isWritable = false;
    NSString* type = nil;
};

FileSystemInformation informationOf(NSString* path) {
    BOOL isRemovable = NO;
    BOOL isWritable = NO;
    BOOL isUnmountable = NO;
    NSString* description = nil;
    FileSystemInformation information;
    [[NSWorkspace sharedWorkspace] getFileSystemInfoForPath:path
                                                isRemovable:&isRemovable
                                                 isWritable:&isWritable
                                              isUnmountable:&isUnmountable
                                                description:&description
                                                       type:&information.type];
    information.isRemovable = isRemovable;
    information.isWritable = isWritable;
    return information;
}

/// Autoreleased. Nil when the disk arbitration service has none.
NSDictionary* descriptionOfDevice(const char* name) {
    const CFOwner<DASessionRef> session(DASessionCreate(kCFAllocatorDefault));
    if (!session)
        return nil;
    const CFOwner<DADiskRef> disk(
        DADiskCreateFromBSDName(kCFAllocatorDefault, session.get(), name));
    return disk ? [bridged(DADiskCopyDescription(disk.get())) autorelease] : nil;
}

/// Of the volume at the path; nil when there is none.
NSDictionary* descriptionOf(NSString* path) {
    struct statfs fileSystem {};
    if (statfs([path fileSystemRepresentation], &fileSystem) != 0)
        return nil;
    return descriptionOfDevice(fileSystem.f_mntfromname);
}

id valueOf(NSDictionary* description, CFStringRef key) {
    return [description objectForKey:bridged(key)];
}

bool is(NSDictionary* description, CFStringRef key, id value) {
    return [valueOf(description, key) isEqual:value];
}

DriveType typeOf(bool isRemovable, NSDictionary* description) {
    if (!isRemovable)
        return Fixed;
    // Without a description nothing is known but that.
    if (is(description, kDADiskDescriptionDeviceProtocolKey, @"Virtual Interface"))
        return Virtual;
    if (is(description, kDADiskDescriptionVolumeNetworkKey, @(YES)))
        return Network;
    if (is(description, kDADiskDescriptionMediaTypeKey, @"CD-ROM") ||
        is(description, kDADiskDescriptionMediaTypeKey, @"DVD-ROM"))
        return Optical;
    return Removable;
}

std::unique_ptr<FileIconBitmap> bitmapOf(NSImage* icon) {
    for (NSImageRep* representation in [icon representations]) {
        if (![representation isKindOfClass:[NSBitmapImageRep class]])
            continue;
        NSBitmapImageRep* const bitmap = static_cast<NSBitmapImageRep*>(representation);
        return std::make_unique<FileIconBitmap>(static_cast<std::uint32_t>([bitmap size].width),
                                                static_cast<std::uint32_t>([bitmap size].height),
                                                static_cast<std::uint32_t>([bitmap bytesPerRow]),
                                                static_cast<std::uint32_t>([bitmap bitsPerPixel]),
                                                [bitmap bitmapData]);
    }
    return nullptr;
}

FileProperties propertiesOf(const std::string& path, NSString* platformPath, NSImage* icon,
                            bool isWritable) {
    FileProperties properties;
    properties.setName(path);
    properties.setTargetPath(path);
    properties.setFullPath(path);
    properties.setTitle(textOf([[NSFileManager defaultManager] displayNameAtPath:platformPath]));
    properties.setFlag(Hidden, false);
    properties.setFlag(ReadOnly, !isWritable);
    properties.setIcon(bitmapOf(icon));
    return properties;
}

/// Under which path a volume is reported; nil for what the system keeps for itself.
NSString* reportedPath(NSString* path) {
    if ([path isEqualToString:NSOpenStepRootDirectory()])
        return [NSString fromStdString:startupVolume()];
    const bool isVolume =
        [path length] > [kVolumesPrefix length] && [path hasPrefix:kVolumesPrefix];
    return isVolume ? path : nil;
}

}  // namespace

std::vector<Drive> Drive::drivesImplMac() {
    const ScopedARPool pool;
    std::vector<Drive> drives;
    for (NSString* path in [[NSWorkspace sharedWorkspace] mountedLocalVolumePaths]) {
        if (NSString* const reported = reportedPath(path))
            drives.push_back(fromDrivePath([reported toStdString]));
    }
    return drives;
}

Drive Drive::fromDrivePath(std::string path) {
    const ScopedARPool pool;
    NSString* const platformPath = [NSString fromStdString:path];
    const FileSystemInformation information = informationOf(platformPath);
    NSDictionary* const description = descriptionOf(platformPath);
    NSImage* const icon = [[NSWorkspace sharedWorkspace] iconForFile:platformPath];
    Drive drive(typeOf(information.isRemovable, description),
                propertiesOf(path, platformPath, icon, information.isWritable), kVolumesFolder);
    if (information.isRemovable)
        drive._volumeURL =
            textOf([valueOf(description, kDADiskDescriptionVolumePathKey) description]);
    return drive;
}

std::optional<DriveSpace> Drive::space() const {
    const ScopedARPool pool;
    NSDictionary* const attributes = [[NSFileManager defaultManager]
        attributesOfFileSystemForPath:[NSString fromStdString:_properties.fullPath()]
                                error:nullptr];
    if (attributes == nil)
        return std::nullopt;
    return DriveSpace{[[attributes objectForKey:NSFileSystemSize] unsignedLongLongValue],
                      [[attributes objectForKey:NSFileSystemFreeSize] unsignedLongLongValue]};
}

DriveDetails Drive::details() const {
    const ScopedARPool pool;
    NSString* const path = [NSString fromStdString:_properties.fullPath()];
    DriveDetails details;
    struct statfs fileSystem {};
    if (statfs([path fileSystemRepresentation], &fileSystem) != 0)
        return details;
    NSDictionary* const description = descriptionOfDevice(fileSystem.f_mntfromname);
    details.location = fileSystem.f_mntonname;
    details.fileSystemType = textOf(informationOf(path).type);
    details.label = textOf(valueOf(description, kDADiskDescriptionVolumeNameKey));
    details.uuid = textOf([valueOf(description, kDADiskDescriptionVolumeUUIDKey) description]);
    if (id const device = valueOf(description, kDADiskDescriptionMediaBSDNameKey))
        details.deviceNode = "/dev/" + textOf(device);
    return details;
}

}  // namespace tav::ula
