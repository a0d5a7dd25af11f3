// SPDX-License-Identifier: MIT
#include "CoreServices/Aliases.h"

#include "CoreFoundation/Guarded.h"
#include "CoreServices/AliasNames.h"
#include "CoreServices/AliasResolver.h"
#include "CoreServices/Finder.h"

#include <cerrno>
#include <cstring>
#include <memory>
#include <sys/stat.h>
#include <type_traits>

// What a handle points to.
struct AliasRecord {
    std::string path;
    bool isFolder = false;
    OSType fileType = 0;  // of alias files
};

namespace {

using namespace coreservices;

// A handle is the address of a pointer to the record.
struct Block {
    AliasPtr master;
    AliasRecord record;
};
static_assert(std::is_standard_layout_v<Block>);

OSErr errorOf(int number) {
    return number == EACCES ? afpAccessDenied : fnfErr;
}

OSErr errorOf(Resolution resolution) {
    switch (resolution) {
    case Resolution::Found:
    case Resolution::NotAnAlias:
        return noErr;
    case Resolution::NotMounted:
        return nsvErr;
    case Resolution::NoAnswer:
        return volOffLinErr;
    case Resolution::NoPermission:
        return afpAccessDenied;
    case Resolution::Missing:
    case Resolution::TooLong:
        break;
    }
    return fnfErr;
}

OSType fileTypeOf(const ResolvedAlias& alias) {
    switch (alias.kind) {
    case AliasKind::Folder:
        return kContainerFolderAliasType;
    case AliasKind::Disk:
        return kContainerHardDiskAliasType;
    case AliasKind::File:
        break;
    }
    return kGenericAliasFileType;
}

void fill(AliasRecord& record, const char* path, mode_t mode) {
    record.path = path;
    record.isFolder = S_ISDIR(mode);
    if (!S_ISREG(mode) || !isAliasFile(record.path))
        return;
    record.fileType = fileTypeOf(
        resolveAlias(record.path, Chains::Follow, Mounting::Never, AliasPlaces::ofProcess()));
}

void copyInfo(const AliasRecord& record, FSAliasInfoBitmap* whichInfo, FSAliasInfo* info) {
    bool isAliasFile = record.fileType != 0;
    if (whichInfo != nullptr)
        *whichInfo = static_cast<FSAliasInfoBitmap>(
            kFSAliasInfoIsDirectory | (isAliasFile ? kFSAliasInfoFinderInfo : kFSAliasInfoNone));
    if (info == nullptr)
        return;
    std::memset(info, 0, sizeof *info);
    info->fileType = record.fileType;
    info->fileCreator = isAliasFile ? kGenericAliasFileCreator : 0;
    info->isDirectory = record.isFolder;
}

OSErr makeAlias(const char* path, AliasHandle* made) {
    struct stat info;
    if (lstat(path, &info) != 0)
        return errorOf(errno);
    auto block = std::make_unique<Block>();
    block->master = &block->record;
    fill(block->record, path, info.st_mode);
    *made = &block.release()->master;
    return noErr;
}

OSErr resolve(FSRef& reference, Chains chains, Mounting mounting, Boolean* isFolder,
              Boolean* wasAliased) {
    ResolvedAlias alias =
        resolveAlias(pathOf(reference), chains, mounting, AliasPlaces::ofProcess());
    *wasAliased = alias.wasAliased;
    *isFolder = alias.isFolder;
    if (alias.resolution == Resolution::Found && !setPath(reference, alias.path))
        return bdNamErr;
    return errorOf(alias.resolution);
}

void copyNames(const AliasRecord& record, HFSUniStr255* targetName, HFSUniStr255* volumeName,
               CFStringRef* pathString) {
    if (targetName != nullptr)
        *targetName = hfsName(record.path.substr(record.path.rfind('/') + 1));
    if (volumeName != nullptr)
        *volumeName = hfsName(volumeNameOf(record.path));
    if (pathString != nullptr)
        *pathString = CFStringCreateWithBytes(
            kCFAllocatorDefault, reinterpret_cast<const UInt8*>(record.path.data()),
            static_cast<CFIndex>(record.path.size()), kCFStringEncodingUTF8, false);
}

}  // namespace

OSErr FSNewAliasMinimal(const FSRef* target, AliasHandle* inAlias) {
    if (inAlias == nullptr)
        return paramErr;
    *inAlias = nullptr;
    if (target == nullptr || pathOf(*target)[0] != '/')
        return paramErr;
    return cf::guarded<OSErr>(memFullErr, ioErr,
                              [&] { return makeAlias(pathOf(*target), inAlias); });
}

OSStatus FSCopyAliasInfo(AliasHandle inAlias, HFSUniStr255* targetName, HFSUniStr255* volumeName,
                         CFStringRef* pathString, FSAliasInfoBitmap* whichInfo, FSAliasInfo* info) {
    if (inAlias == nullptr || *inAlias == nullptr)
        return paramErr;
    return cf::guarded<OSStatus>(memFullErr, ioErr, [&]() -> OSStatus {
        copyNames(**inAlias, targetName, volumeName, pathString);
        copyInfo(**inAlias, whichInfo, info);
        return noErr;
    });
}

OSErr FSResolveAliasFileWithMountFlags(FSRef* theRef, Boolean resolveAliasChains,
                                       Boolean* targetIsFolder, Boolean* wasAliased,
                                       unsigned long mountFlags) {
    if (theRef == nullptr || targetIsFolder == nullptr || wasAliased == nullptr ||
        pathOf(*theRef)[0] != '/')
        return paramErr;
    bool quiet = (mountFlags & kResolveAliasFileNoUI) != 0;
    const Mounting mounting = quiet ? Mounting::Never : Mounting::IfNeeded;
    const Chains chains = resolveAliasChains ? Chains::Follow : Chains::OneStep;
    return cf::guarded<OSErr>(memFullErr, ioErr, [&] {
        return resolve(*theRef, chains, mounting, targetIsFolder, wasAliased);
    });
}

OSErr FSResolveAliasFile(FSRef* theRef, Boolean resolveAliasChains, Boolean* targetIsFolder,
                         Boolean* wasAliased) {
    return FSResolveAliasFileWithMountFlags(theRef, resolveAliasChains, targetIsFolder, wasAliased,
                                            0);
}

void DisposeHandle(Handle handle) {
    delete reinterpret_cast<Block*>(handle);
}
