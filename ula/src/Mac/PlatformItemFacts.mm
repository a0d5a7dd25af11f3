// SPDX-License-Identifier: MIT
#include "ula/src/Mac/PlatformItemFacts.h"

#include "ula/src/Mac/Bridge.h"
#include "ula/src/Mac/CFOwner.h"
#include "ula/src/Mac/FileReference.h"
#include "ula/src/Mac/VolumesFolder.h"

#include <CoreServices/CoreServices.h>

namespace tav::ula {

namespace {

constexpr OSType kFolderType = 'fdrp';
constexpr OSType kDiskType = 'hdsk';

/// Owns a minimal alias.
class MinimalAlias {
public:
    explicit MinimalAlias(const FSRef& item) {
        if (FSNewAliasMinimal(&item, &_alias) != noErr)
            _alias = nullptr;
    }
    ~MinimalAlias() {
        if (_alias != nullptr)
            DisposeHandle(reinterpret_cast<Handle>(_alias));
    }
    MinimalAlias(const MinimalAlias&) = delete;
    MinimalAlias& operator=(const MinimalAlias&) = delete;

    /// 0 where it cannot be read.
    OSType fileType() const {
        FSAliasInfo info{};
        if (_alias == nullptr ||
            FSCopyAliasInfo(_alias, nullptr, nullptr, nullptr, nullptr, &info) != noErr)
            return 0;
        return info.fileType;
    }

private:
    AliasHandle _alias = nullptr;
};

NSArray* attributeNames() {
    return
        @[ bridged(kLSItemContentType), bridged(kLSItemIsInvisible), bridged(kLSItemDisplayName) ];
}

void takeTypes(CFStringRef type, ItemAttributes& attributes) {
    if (type == nullptr)
        return;
    attributes.isSymbolicLink = UTTypeConformsTo(type, kUTTypeSymLink);
    attributes.isFolder = UTTypeConformsTo(type, kUTTypeFolder);
    attributes.isResolvable = UTTypeConformsTo(type, kUTTypeResolvable);
    attributes.isPackage = UTTypeConformsTo(type, kUTTypePackage);
    attributes.isVolume = UTTypeConformsTo(type, kUTTypeVolume);
}

}  // namespace

PlatformItemFacts::PlatformItemFacts(const std::string& path)
    : _path([NSString fromStdString:path]) {
}

bool PlatformItemFacts::name(std::string& name) {
    if (_path == nil)
        return false;
    name = [[_path lastPathComponent] toStdString];
    return true;
}

bool PlatformItemFacts::isReadable() {
    return [[NSFileManager defaultManager] isReadableFileAtPath:_path];
}

bool PlatformItemFacts::exists(bool& isDirectory) {
    BOOL isFolder = NO;
    const bool exists = [[NSFileManager defaultManager] fileExistsAtPath:_path
                                                             isDirectory:&isFolder];
    _isDirectory = isDirectory = isFolder;
    return exists;
}

bool PlatformItemFacts::isWritable() {
    return [[NSFileManager defaultManager] isWritableFileAtPath:_path];
}

bool PlatformItemFacts::attributes(ItemAttributes& attributes) {
    FSRef reference;
    if (!fileReferenceOf(_path, _isDirectory, reference))
        return false;
    CFOwner<CFDictionaryRef> values;
    if (LSCopyItemAttributes(&reference, kLSRolesViewer, bridged(attributeNames()),
                             values.receive()) != noErr ||
        !values)
        return false;
    NSDictionary* const found = bridged(values.get());
    attributes.isInvisible = [found objectForKey:bridged(kLSItemIsInvisible)] ==
                             reinterpret_cast<const NSObject*>(kCFBooleanTrue);
    if (NSString* const displayName = [found objectForKey:bridged(kLSItemDisplayName)])
        attributes.displayName = [displayName toStdString];
    NSString* const type = [found objectForKey:bridged(kLSItemContentType)];
    takeTypes(bridged(type), attributes);
    return true;
}

std::string PlatformItemFacts::resolvedPath() {
    return [[_path stringByResolvingSymlinksInPath] toStdString];
}

bool PlatformItemFacts::isAliasOfFolderOrDisk() {
    FSRef reference;
    if (!fileReferenceOf(_path, _isDirectory, reference))
        return false;
    const OSType type = MinimalAlias(reference).fileType();
    return type == kFolderType || type == kDiskType;
}

bool PlatformItemFacts::resolveAlias(std::string& path) {
    FSRef reference;
    if (!fileReferenceOf(_path, _isDirectory, reference))
        return false;
    Boolean isFolder = false;
    Boolean wasAlias = false;
    if (FSResolveAliasFileWithMountFlags(&reference, true, &isFolder, &wasAlias,
                                         kResolveAliasFileNoUI) != noErr ||
        !wasAlias)
        return false;
    NSString* const resolved = pathOfFileReference(reference);
    if (resolved == nil)
        return false;
    path = [resolved toStdString];
    return true;
}

const std::string& PlatformItemFacts::startupVolume() {
    if (_startupVolume.empty())
        _startupVolume = ula::startupVolume();
    return _startupVolume;
}

}  // namespace tav::ula
