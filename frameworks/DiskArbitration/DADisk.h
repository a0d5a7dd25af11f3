// SPDX-License-Identifier: MIT
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <DiskArbitration/DASession.h>

CF_EXTERN_C_BEGIN

typedef struct __DADisk* DADiskRef;

/// `name` is a device, "sda1" or "/dev/sda1", or what `statfs` gives as the name from which a file
/// system is mounted. Whether there is such a disk shows when it is described.
/// Owner: the caller. Fails: null without session or name.
CF_EXPORT DADiskRef DADiskCreateFromBSDName(CFAllocatorRef allocator, DASessionRef session,
                                            const char* name);

/// "sda1". Owner: the disk. Null for what is no block device.
CF_EXPORT const char* DADiskGetBSDName(DADiskRef disk);

/// What is known of the disk now, under the keys below; what is not known has no key. No mounted
/// file system is asked. Owner: the caller. Fails: null for a disk that is not there.
CF_EXPORT CFDictionaryRef DADiskCopyDescription(DADiskRef disk);

/* Of the volume; only when it is mounted. */
CF_EXPORT const CFStringRef kDADiskDescriptionVolumeKindKey;      /* "ext4" */
CF_EXPORT const CFStringRef kDADiskDescriptionVolumeMountableKey; /* boolean */
CF_EXPORT const CFStringRef kDADiskDescriptionVolumeNameKey;      /* the label, else the folder */
CF_EXPORT const CFStringRef kDADiskDescriptionVolumeNetworkKey;   /* boolean */
CF_EXPORT const CFStringRef kDADiskDescriptionVolumePathKey;      /* CFURL */
CF_EXPORT const CFStringRef kDADiskDescriptionVolumeUUIDKey;      /* CFString: not all are UUIDs */

/* Of the medium; only of block devices. */
CF_EXPORT const CFStringRef kDADiskDescriptionMediaBSDMajorKey;  /* number */
CF_EXPORT const CFStringRef kDADiskDescriptionMediaBSDMinorKey;  /* number */
CF_EXPORT const CFStringRef kDADiskDescriptionMediaBSDNameKey;   /* "sda1" */
CF_EXPORT const CFStringRef kDADiskDescriptionMediaEjectableKey; /* boolean */
CF_EXPORT const CFStringRef kDADiskDescriptionMediaNameKey;
CF_EXPORT const CFStringRef kDADiskDescriptionMediaRemovableKey; /* boolean */
CF_EXPORT const CFStringRef kDADiskDescriptionMediaSizeKey;      /* number of bytes */
CF_EXPORT const CFStringRef kDADiskDescriptionMediaTypeKey;      /* "CD-ROM", "DVD-ROM", "BD-ROM" */
CF_EXPORT const CFStringRef kDADiskDescriptionMediaWholeKey;     /* boolean */
CF_EXPORT const CFStringRef kDADiskDescriptionMediaWritableKey;  /* boolean */

/* Of the device. */
CF_EXPORT const CFStringRef kDADiskDescriptionDeviceInternalKey; /* boolean */
CF_EXPORT const CFStringRef kDADiskDescriptionDeviceModelKey;
CF_EXPORT const CFStringRef kDADiskDescriptionDevicePathKey;     /* in sysfs */
CF_EXPORT const CFStringRef kDADiskDescriptionDeviceProtocolKey; /* "USB", "Virtual Interface" */
CF_EXPORT const CFStringRef kDADiskDescriptionDeviceRevisionKey;
CF_EXPORT const CFStringRef kDADiskDescriptionDeviceVendorKey;

CF_EXTERN_C_END
