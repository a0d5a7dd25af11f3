// SPDX-License-Identifier: MIT
// Aliases and alias files. An alias file here is a desktop entry of the type Link that leads to an
// item of the file system, and an alias file that the platform's own system has made. Symbolic
// links are resolved as alias files are.
#pragma once

#include <CoreFoundation/CFString.h>
#include <CoreServices/Files.h>

CF_EXTERN_C_BEGIN

typedef struct AliasRecord* AliasPtr;
typedef AliasPtr* AliasHandle;

typedef UInt32 FSAliasInfoBitmap;
enum {
    kFSAliasInfoNone = 0,
    kFSAliasInfoVolumeCreateDate = 1,
    kFSAliasInfoTargetCreateDate = 2,
    kFSAliasInfoFinderInfo = 4,
    kFSAliasInfoIsDirectory = 8,
    kFSAliasInfoIDs = 16,
    kFSAliasInfoFSInfo = 32,
    kFSAliasInfoVolumeFlags = 64,
};

typedef struct FSAliasInfo {
    UTCDateTime volumeCreateDate;
    UTCDateTime targetCreateDate;
    OSType fileType;
    OSType fileCreator;
    UInt32 parentDirID;
    UInt32 nodeID;
    UInt16 filesystemID;
    UInt16 signature;
    Boolean volumeIsBootVolume;
    Boolean volumeIsAutomounted;
    Boolean volumeIsEjectable;
    Boolean volumeHasPersistentFileIDs;
    Boolean isDirectory;
} FSAliasInfo;

enum {
    kResolveAliasFileNoUI = 1,
};

/// An alias of the item itself, be it an alias file. Ends with DisposeHandle((Handle)alias).
/// Fails: paramErr, fnfErr where nothing lies; the alias is then null.
CF_EXPORT OSErr FSNewAliasMinimal(const FSRef* target, AliasHandle* inAlias);

/// What the alias was made with. Every result may be null, those that are not are set.
/// fileType is known of alias files alone (kFSAliasInfoFinderInfo): kContainerFolderAliasType and
/// kContainerHardDiskAliasType when the alias file leads to a folder or a disk, found or not,
/// kGenericAliasFileType otherwise. The other valid field of `info` is isDirectory.
/// Owner: the caller of the path; it is null when it is not UTF-8.
/// Fails: paramErr.
CF_EXPORT OSStatus FSCopyAliasInfo(AliasHandle inAlias, HFSUniStr255* targetName,
                                   HFSUniStr255* volumeName, CFStringRef* pathString,
                                   FSAliasInfoBitmap* whichInfo, FSAliasInfo* info);

/// Replaces a reference to an alias file by one to where it leads; of a chain, to its end or, with
/// `resolveAliasChains` not set, to its second place. A reference to anything else stays, which is
/// no error; `wasAliased` tells. It may mount what it needs unless `mountFlags` has
/// kResolveAliasFileNoUI.
/// Units: it takes some seconds at most without mounting, half a minute with it.
/// Fails: fnfErr for places that are missing and for chains without an end, nsvErr when the volume
/// is not mounted, volOffLinErr when it does not answer, afpAccessDenied, bdNamErr for paths that
/// are too long, paramErr. The reference then stays.
CF_EXPORT OSErr FSResolveAliasFileWithMountFlags(FSRef* theRef, Boolean resolveAliasChains,
                                                 Boolean* targetIsFolder, Boolean* wasAliased,
                                                 unsigned long mountFlags);

/// The same without flags.
CF_EXPORT OSErr FSResolveAliasFile(FSRef* theRef, Boolean resolveAliasChains,
                                   Boolean* targetIsFolder, Boolean* wasAliased);

/// Only for handles that came from a function above; null is left alone.
CF_EXPORT void DisposeHandle(Handle handle);

CF_EXTERN_C_END
