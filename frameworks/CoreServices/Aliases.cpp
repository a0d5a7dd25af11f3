// SPDX-License-Identifier: MIT
#include "CoreServices/Aliases.h"

#include "CoreServices/AliasNames.h"
#include "CoreServices/AliasResolver.h"
#include "CoreServices/Finder.h"

#include <cerrno>
#include <cstring>
#include <new>
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

}  // namespace

OSErr FSNewAliasMinimal(const FSRef* target, AliasHandle* inAlias) {
    if (inAlias == nullptr)
        return paramErr;
    *inAlias = nullptr;
    if (target == nullptr || pathOf(*target)[0] != '/')
        return paramErr;
    struct stat info;
    if (lstat(pathOf(*target), &info) != 0)
        return errorOf(errno);
    auto* block = new (std::nothrow) Block;
    if (block == nullptr)
        return memFullErr;
    block->master = &block->record;
    fill(block->record, pathOf(*target), info.st_mode);
    *inAlias = &block->master;
    return noErr;
}

OSStatus FSCopyAliasInfo(AliasHandle inAlias, HFSUniStr255* targetName, HFSUniStr255* volumeName,
                         CFStringRef* pathString, FSAliasInfoBitmap* whichInfo, FSAliasInfo* info) {
    if (inAlias == nullptr || *inAlias == nullptr)
        return paramErr;
    const AliasRecord& record = **inAlias;
    if (targetName != nullptr)
        *targetName = hfsName(record.path.substr(record.path.rfind('/') + 1));
    if (volumeName != nullptr)
        *volumeName = hfsName(volumeNameOf(record.path));
    if (pathString != nullptr)
        *pathString = CFStringCreateWithBytes(
            kCFAllocatorDefault, reinterpret_cast<const UInt8*>(record.path.data()),
            static_cast<CFIndex>(record.path.size()), kCFStringEncodingUTF8, false);
    copyInfo(record, whichInfo, info);
    return noErr;
}

OSErr FSResolveAliasFileWithMountFlags(FSRef* theRef, Boolean resolveAliasChains,
                                       Boolean* targetIsFolder, Boolean* wasAliased,
                                       unsigned long mountFlags) {
    if (theRef == nullptr || targetIsFolder == nullptr || wasAliased == nullptr ||
        pathOf(*theRef)[0] != '/')
        return paramErr;
    bool quiet = (mountFlags & kResolveAliasFileNoUI) != 0;
    ResolvedAlias alias =
        resolveAlias(pathOf(*theRef), resolveAliasChains ? Chains::Follow : Chains::OneStep,
                     quiet ? Mounting::Never : Mounting::IfNeeded, AliasPlaces::ofProcess());
    *wasAliased = alias.wasAliased;
    *targetIsFolder = alias.isFolder;
    if (alias.resolution == Resolution::Found && !setPath(*theRef, alias.path))
        return bdNamErr;
    return errorOf(alias.resolution);
}

OSErr FSResolveAliasFile(FSRef* theRef, Boolean resolveAliasChains, Boolean* targetIsFolder,
                         Boolean* wasAliased) {
    return FSResolveAliasFileWithMountFlags(theRef, resolveAliasChains, targetIsFolder, wasAliased,
                                            0);
}

void DisposeHandle(Handle handle) {
    delete reinterpret_cast<Block*>(handle);
}
