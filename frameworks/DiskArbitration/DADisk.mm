// SPDX-License-Identifier: MIT
#include "CoreFoundation/AutoreleasePool.h"
#include "CoreFoundation/Guarded.h"
#include "CoreFoundation/PercentEscapes.h"
#include "DiskArbitration/Description.h"

#include <DiskArbitration/DADisk.h>

#import <Foundation/Foundation.h>

using diskarbitration::BlockDevice;
using diskarbitration::Description;
using diskarbitration::Machine;

@interface ULADASession : NSObject
@end

@implementation ULADASession
@end

@interface ULADADisk : NSObject {
@public
    std::string _name;
    std::string _bsdName;
}
@end

@implementation ULADADisk
@end

namespace {

const ULADADisk* diskOf(DADiskRef reference) {
    return reinterpret_cast<const ULADADisk*>(reference);
}

NSString* keyOf(CFStringRef key) {
    return reinterpret_cast<NSString*>(const_cast<__CFString*>(key));
}

// Nil for what is no text.
NSString* textOf(const std::string& bytes) {
    return [NSString stringWithUTF8String:bytes.c_str()];
}

// Written out: GNUstep looks at the folder even when it is told that it is one, and the server
// behind it may be gone. Nil for a path that is no text.
NSURL* folderURL(const std::string& path) {
    if (textOf(path) == nil)
        return nil;
    const std::string text = "file://" + cf::percentEncoded(path);
    return [NSURL URLWithString:textOf(text.back() == '/' ? text : text + "/")];
}

// Takes pairs of keys and values, and leaves out what is not known.
class Table {
public:
    void add(CFStringRef key, id value) {
        if (value != nil)
            [_table setObject:value forKey:keyOf(key)];
    }
    void add(CFStringRef key, const std::string& text) {
        if (!text.empty())
            add(key, textOf(text));
    }
    void addFlag(CFStringRef key, bool flag) {
        add(key, reinterpret_cast<id>(
                     const_cast<__CFBoolean*>(flag ? kCFBooleanTrue : kCFBooleanFalse)));
    }
    void addNumber(CFStringRef key, uint64_t number) {
        add(key, [NSNumber numberWithUnsignedLongLong:number]);
    }
    CFDictionaryRef copy() const { return reinterpret_cast<CFDictionaryRef>([_table copy]); }

private:
    NSMutableDictionary* _table = [NSMutableDictionary dictionary];
};

void addVolume(Table& table, const Description& description) {
    const coreservices::Mount& mount = *description.mount;
    table.add(kDADiskDescriptionVolumeKindKey, mount.type);
    table.addFlag(kDADiskDescriptionVolumeMountableKey, true);
    table.addFlag(kDADiskDescriptionVolumeNetworkKey, description.isNetwork);
    table.add(kDADiskDescriptionVolumePathKey, folderURL(mount.point));
}

std::string mediaNameOf(const BlockDevice& device) {
    if (!device.image.empty())
        return device.image.substr(device.image.rfind('/') + 1);
    std::string blank = device.vendor.empty() || device.model.empty() ? "" : " ";
    return device.vendor + blank + device.model;
}

void addDevice(Table& table, const BlockDevice& device) {
    size_t colon = device.number.find(':');
    if (colon != std::string::npos) {
        table.addNumber(kDADiskDescriptionMediaBSDMajorKey, std::stoul(device.number));
        table.addNumber(kDADiskDescriptionMediaBSDMinorKey,
                        std::stoul(device.number.substr(colon + 1)));
    }
    table.add(kDADiskDescriptionMediaBSDNameKey, device.name);
    table.addFlag(kDADiskDescriptionMediaEjectableKey, device.isRemovable);
    table.add(kDADiskDescriptionMediaNameKey, mediaNameOf(device));
    table.addFlag(kDADiskDescriptionMediaRemovableKey, device.hasRemovableMedium);
    table.addNumber(kDADiskDescriptionMediaSizeKey, device.size);
    table.add(kDADiskDescriptionMediaTypeKey, device.mediaType);
    table.addFlag(kDADiskDescriptionMediaWholeKey, device.isWhole);
    table.addFlag(kDADiskDescriptionMediaWritableKey, !device.isReadOnly);
    table.addFlag(kDADiskDescriptionDeviceInternalKey, device.isInternal);
    table.add(kDADiskDescriptionDeviceModelKey, device.model);
    table.add(kDADiskDescriptionDevicePathKey, device.path);
    table.add(kDADiskDescriptionDeviceRevisionKey, device.revision);
    table.add(kDADiskDescriptionDeviceVendorKey, device.vendor);
}

DADiskRef makeDisk(const char* name) {
    auto* disk = [[[ULADADisk alloc] init] autorelease];
    disk->_name = name;
    auto description = diskarbitration::describeName(disk->_name, Machine::ofProcess());
    if (description && description->device)
        disk->_bsdName = description->device->name;
    return reinterpret_cast<DADiskRef>([disk retain]);
}

CFDictionaryRef copyDescription(const std::string& name) {
    const Machine& machine = Machine::ofProcess();
    auto description = diskarbitration::describeName(name, machine);
    if (!description)
        return nullptr;
    Table table;
    if (description->mount)
        addVolume(table, *description);
    if (description->device)
        addDevice(table, *description->device);
    diskarbitration::VolumeLabel names = namesOf(*description, machine);
    table.add(kDADiskDescriptionVolumeNameKey, names.label);
    table.add(kDADiskDescriptionVolumeUUIDKey, names.uuid);
    table.add(kDADiskDescriptionDeviceProtocolKey, description->protocol);
    return table.copy();
}

}  // namespace

#define DA_KEY(name, text) const CFStringRef kDADiskDescription##name##Key = CFSTR(text)

DA_KEY(VolumeKind, "DAVolumeKind");
DA_KEY(VolumeMountable, "DAVolumeMountable");
DA_KEY(VolumeName, "DAVolumeName");
DA_KEY(VolumeNetwork, "DAVolumeNetwork");
DA_KEY(VolumePath, "DAVolumePath");
DA_KEY(VolumeUUID, "DAVolumeUUID");
DA_KEY(MediaBSDMajor, "DAMediaBSDMajor");
DA_KEY(MediaBSDMinor, "DAMediaBSDMinor");
DA_KEY(MediaBSDName, "DAMediaBSDName");
DA_KEY(MediaEjectable, "DAMediaEjectable");
DA_KEY(MediaName, "DAMediaName");
DA_KEY(MediaRemovable, "DAMediaRemovable");
DA_KEY(MediaSize, "DAMediaSize");
DA_KEY(MediaType, "DAMediaType");
DA_KEY(MediaWhole, "DAMediaWhole");
DA_KEY(MediaWritable, "DAMediaWritable");
DA_KEY(DeviceInternal, "DADeviceInternal");
DA_KEY(DeviceModel, "DADeviceModel");
DA_KEY(DevicePath, "DADevicePath");
DA_KEY(DeviceProtocol, "DADeviceProtocol");
DA_KEY(DeviceRevision, "DADeviceRevision");
DA_KEY(DeviceVendor, "DADeviceVendor");

DASessionRef DASessionCreate(CFAllocatorRef) {
    return reinterpret_cast<DASessionRef>([[ULADASession alloc] init]);
}

DADiskRef DADiskCreateFromBSDName(CFAllocatorRef, DASessionRef session, const char* name) {
    if (session == nullptr || name == nullptr || *name == '\0')
        return nullptr;
    const cf::AutoreleasePool pool;
    const DADiskRef none = nullptr;
    return cf::guarded(none, none, [&] { return makeDisk(name); });
}

const char* DADiskGetBSDName(DADiskRef disk) {
    const std::string& name = diskOf(disk)->_bsdName;
    return name.empty() ? nullptr : name.c_str();
}

CFDictionaryRef DADiskCopyDescription(DADiskRef disk) {
    if (disk == nullptr)
        return nullptr;
    const cf::AutoreleasePool pool;
    const CFDictionaryRef none = nullptr;
    return cf::guarded(none, none, [&] { return copyDescription(diskOf(disk)->_name); });
}
