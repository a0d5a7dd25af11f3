// SPDX-License-Identifier: MIT
#include "ula/src/Mac/MovePaths.h"

#include "ula/src/Mac/FileReference.h"
#include "ula/src/Mac/RecycleOperation.h"

#include <sys/stat.h>

namespace tav::ula {

namespace {

/// As many as the system follows: links that lead in a circle end somewhere.
constexpr int kMostLinks = 32;

bool examine(NSString* path, struct stat& item) {
    return path != nil && lstat([path fileSystemRepresentation], &item) == 0;
}

/// Nil where the link cannot be read.
NSString* targetOfLink(NSString* path) {
    NSString* const target =
        [[NSFileManager defaultManager] destinationOfSymbolicLinkAtPath:path error:nullptr];
    if (target == nil || [target isAbsolutePath])
        return target;
    NSString* const folder = [path stringByDeletingLastPathComponent];
    return [[folder stringByAppendingPathComponent:target] stringByStandardizingPath];
}

/// Nil for what is no alias, and for one that cannot be resolved.
NSString* targetOfAlias(NSString* path) {
    FSRef reference;
    Boolean isFolder = false;
    Boolean wasAlias = false;
    if (!fileReferenceOf(path, false, reference) ||
        FSResolveAliasFileWithMountFlags(&reference, false, &isFolder, &wasAlias,
                                         kResolveAliasFileNoUI) != noErr ||
        !wasAlias)
        return nil;
    return pathOfFileReference(reference);
}

/// Where the last component leads. Nil where that is nowhere.
NSString* resolvedComponent(NSString* path) {
    struct stat item {};
    for (int links = 0; links <= kMostLinks; ++links) {
        if (!examine(path, item))
            return nil;
        if (S_ISDIR(item.st_mode))
            return path;
        NSString* const target = S_ISLNK(item.st_mode) ? targetOfLink(path) : targetOfAlias(path);
        if (target == nil)
            return S_ISLNK(item.st_mode) ? nil : path;
        path = target;
    }
    return nil;
}

}  // namespace

bool trashPath(NSString* path) {
    const bool done = recycle([path stringByDeletingLastPathComponent], [path lastPathComponent]);
    if (!done)
        NSLog(@"ERROR -- Could not trash '%@'", path);
    return done;
}

NSString* resolvedPath(NSString* path) {
    NSString* const standardized = [path stringByStandardizingPath];
    if (![standardized hasPrefix:@"/"])
        return nil;
    NSString* resolved = nil;
    for (NSString* component in [standardized pathComponents]) {
        resolved = resolvedComponent(
            resolved == nil ? component : [resolved stringByAppendingPathComponent:component]);
        if (resolved == nil)
            return nil;
    }
    return resolved;
}

}  // namespace tav::ula
