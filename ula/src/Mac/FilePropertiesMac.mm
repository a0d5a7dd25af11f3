// SPDX-License-Identifier: MIT
#include "ula/FileProperties.h"
#import "ula/NSPathUtil.h"
#import "ula/ObjCHelper.h"
#include "ula/ScopedARPool.h"
#include "ula/src/Core/ItemExamination.h"
#include "ula/src/Mac/FileReference.h"
#include "ula/src/Mac/PlatformItemFacts.h"

namespace tav::ula {

namespace {

/// Where the alias file leads; the user may be asked, and volumes mounted. Fails: an empty text.
std::string resolveWithUser(const std::string& aliasFile) {
    NSString* const path = [NSString fromStdString:aliasFile];
    FSRef reference;
    if (path == nil || !fileReferenceOf(path, false, reference))
        return {};
    Boolean isFolder = false;
    Boolean wasAlias = false;
    if (FSResolveAliasFile(&reference, true, &isFolder, &wasAlias) != noErr || !wasAlias)
        return {};
    NSString* const resolved = pathOfFileReference(reference);
    return resolved == nil ? std::string()
                           : [[NSPathUtil normalizeToRootDisk:resolved] toStdString];
}

}  // namespace

FileProperties FileProperties::create(const std::string& path) {
    const ScopedARPool pool;
    PlatformItemFacts facts(path);
    return examineItem(path, facts);
}

void FileProperties::resolveUnresolvedAlias() {
    if (!isFlagSet(UnresolvedAlias))
        return;
    const ScopedARPool pool;
    std::string target = resolveWithUser(targetPath());
    if (target.empty())
        return;
    setTargetPath(std::move(target));
    setFlag(UnresolvedAlias, false);
}

}  // namespace tav::ula
