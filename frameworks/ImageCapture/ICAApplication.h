// SPDX-License-Identifier: MIT
// Cameras and memory cards, what lies on them, and bringing it over.
//
// Everything has a number: the list of devices, each device, each folder and file. A device keeps
// its number while it is connected, a file as long as its device; no number is given twice.
//
// Every call is made with a block of arguments. It is done when it returns; a completion routine,
// if given, is called before that. Thread: any; calls for one device wait for each other.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreServices/Files.h>

CF_EXTERN_C_BEGIN

typedef UInt32 ICAObject;
typedef SInt16 ICAError;

enum {
    kICACommunicationErr = -9900,  // the device does not answer, or has gone
    kICADeviceNotFoundErr = -9901,
    kICADeviceNotOpenErr = -9902,
    kICAFileCorruptedErr = -9903,  // less, or more, came than the device had told
    kICAInvalidObjectErr = -9905,  // there is no object of this number
    kICAIndexOutOfRangeErr = -9907,
    kICACannotYieldDevice = -9909,  // another program has it
};

typedef struct ICAHeader {
    ICAError err;
    UInt32 refcon;
} ICAHeader;

typedef void (*ICACompletion)(ICAHeader* pb);

typedef struct ICAGetDeviceListPB {
    ICAHeader header;
    ICAObject object;
} ICAGetDeviceListPB;

/// Looks for devices. Stores the number of the list, whose property dictionary has them.
CF_EXPORT ICAError ICAGetDeviceList(ICAGetDeviceListPB* pb, ICACompletion completion);

typedef struct ICACopyObjectPropertyDictionaryPB {
    ICAHeader header;
    ICAObject object;
    CFDictionaryRef* theDict;
} ICACopyObjectPropertyDictionaryPB;

/// Owner: the caller. Of every object: "icao" (its number), "ifil" (its name, fit to be that of a
/// file: without "/", not hidden, not ".."). Of the list: "devices", an array with these two of
/// each device, the keys below, and kULAProblemKey once something went wrong with it. Of a device:
/// the keys below and "data", an array with the dictionary of each file. Of a file: "isiz", its
/// size, "9003", the date of the file as EXIF writes dates, kULAModificationTimeKey.
/// Fails: kICAInvalidObjectErr, or why the device cannot be read.
CF_EXPORT ICAError ICACopyObjectPropertyDictionary(ICACopyObjectPropertyDictionaryPB* pb,
                                                   ICACompletion completion);

/// "ICAUserAssignedDeviceNameKey": a text.
CF_EXPORT const CFStringRef kICAUserAssignedDeviceNameKey;
/// "ICADeviceTypeKey": one of the two texts below.
CF_EXPORT const CFStringRef kICADeviceTypeKey;
CF_EXPORT const CFStringRef kICADeviceTypeCamera;
CF_EXPORT const CFStringRef kICADeviceTypeCardReader;
/// "ICANumberOfDownloadableObjectsKey": a number; not in the list of devices.
CF_EXPORT const CFStringRef kICANumberOfDownloadableObjectsKey;
/// This system's own. Why the device could not be read the last time, with what to do about it.
CF_EXPORT const CFStringRef kULAProblemKey;
/// This system's own. When the file was last changed. Units: seconds since 1970.
CF_EXPORT const CFStringRef kULAModificationTimeKey;

typedef struct ICAGetChildCountPB {
    ICAHeader header;
    ICAObject object;
    UInt32 count;
} ICAGetChildCountPB;

/// How much lies in a device or folder. Reads this one folder and no other: so the first names of
/// a large card are there long before the last.
CF_EXPORT ICAError ICAGetChildCount(ICAGetChildCountPB* pb, ICACompletion completion);

typedef struct ICAObjectInfo {
    OSType objectType;
    OSType objectSubtype;
} ICAObjectInfo;

enum {
    kICADirectory = 0x64697265,  // 'dire'
    kICAFile = 0x66696c65,       // 'file'
};

typedef struct ICAGetNthChildPB {
    ICAHeader header;
    ICAObject parentObject;
    UInt32 index;
    ICAObject childObject;
    ICAObjectInfo childInfo;
} ICAGetNthChildPB;

/// Of what ICAGetChildCount counted the last time. Counts from 1. Fails: kICAIndexOutOfRangeErr.
CF_EXPORT ICAError ICAGetNthChild(ICAGetNthChildPB* pb, ICACompletion completion);

typedef struct ICACopyObjectDataPB {
    ICAHeader header;
    ICAObject object;
    unsigned long startByte;
    unsigned long requestedSize;
    CFDataRef* data;
} ICACopyObjectDataPB;

/// Owner: the caller. Bytes of a file; fewer than requested only at its end.
CF_EXPORT ICAError ICACopyObjectData(ICACopyObjectDataPB* pb, ICACompletion completion);

enum {
    kCreateCustomIcon = 0x00000002,    // without effect: desktops make their own
    kAdjustCreationDate = 0x00000008,  // the new file keeps the date that the device tells
};

typedef struct ICADownloadFilePB {
    ICAHeader header;
    ICAObject object;
    FSRef* dirFSRef;
    UInt32 flags;
    OSType fileType;
    OSType fileCreator;
    FSRef* fileFSRef;
} ICADownloadFilePB;

/// Brings a file over into a folder, under its name; whole or not at all, also where the program,
/// the device or the computer dies. When it returns the file is on the disk.
/// `fileFSRef`, if given, receives where it is.
/// Fails: -48 (dupFNErr) when something of that name is there, which stays as it is; dskFulErr,
/// afpAccessDenied, dirNFErr; kICACommunicationErr and the other codes above.
CF_EXPORT ICAError ICADownloadFile(ICADownloadFilePB* pb, ICACompletion completion);

enum {
    dskFulErr = -34,
    dupFNErr = -48,
};

/// Thread: that of the registration. The dictionary has kICANotificationDeviceICAObjectKey.
typedef void (*ICANotification)(CFStringRef notificationType, CFDictionaryRef dictionary);

CF_EXPORT const CFStringRef kICANotificationTypeDeviceAdded;
CF_EXPORT const CFStringRef kICANotificationTypeDeviceRemoved;
CF_EXPORT const CFStringRef kICANotificationTypeStoreAdded;
CF_EXPORT const CFStringRef kICANotificationTypeStoreRemoved;
CF_EXPORT const CFStringRef kICANotificationDeviceICAObjectKey;

typedef struct ICARegisterForEventNotificationPB {
    ICAHeader header;
    ICAObject objectOfInterest;
    CFArrayRef eventsOfInterest;
    ICANotification notificationProc;
    CFDictionaryRef options;
} ICARegisterForEventNotificationPB;

/// From now on devices that come and go are told on the calling thread's run loop, in the common
/// modes; those also that came after the last ICAGetDeviceList. For ever: there is no way back.
/// Fails: paramErr without a function or with another object than 0; ioErr where nothing can be
/// watched.
CF_EXPORT ICAError ICARegisterForEventNotification(ICARegisterForEventNotificationPB* pb,
                                                   ICACompletion completion);

CF_EXTERN_C_END
