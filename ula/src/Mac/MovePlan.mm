// SPDX-License-Identifier: MIT
#include "ula/src/Mac/MovePlan.h"

#include "ula/src/Mac/AppKitVersion.h"
#include "ula/src/Mac/MovePaths.h"
#include "ula/src/Mac/VolumesFolder.h"

namespace tav::ula {

namespace {

/// Nil when there is none.
NSString* firstPath(NSArray* paths) {
    return [paths count] == 0 ? nil : [paths objectAtIndex:0];
}

bool isBelowFolder(NSString* path, NSSearchPathDirectory directory) {
    for (NSString* folder in NSSearchPathForDirectoriesInDomains(directory, NSAllDomainsMask, YES))
        if ([path hasPrefix:folder])
            return true;
    return false;
}

/// Whether the user keeps applications there.
bool holdsApplications(NSString* folder) {
    NSFileManager* const files = [NSFileManager defaultManager];
    BOOL isFolder = NO;
    if (folder == nil || ![files fileExistsAtPath:folder isDirectory:&isFolder] || !isFolder)
        return false;
    for (NSString* name in [files contentsOfDirectoryAtPath:folder error:nullptr])
        if ([[name pathExtension] isEqualToString:@"app"])
            return true;
    return false;
}

}  // namespace

bool isInApplicationsFolder(NSString* bundle) {
    return isBelowFolder(bundle, NSApplicationDirectory) ||
           [[bundle pathComponents] containsObject:@"Applications"];
}

bool isInDownloadsFolder(NSString* bundle) {
    if (isAppKitNewerThan(kAppKit10_4))
        return isBelowFolder(bundle, NSDownloadsDirectory);
    NSString* const folder = [bundle stringByDeletingLastPathComponent];
    return [[folder lastPathComponent] isEqualToString:@"Downloads"];
}

MovePlan makeMovePlan(NSString* source) {
    NSFileManager* const files = [NSFileManager defaultManager];
    MovePlan plan;
    plan.source = source;
    plan.isSourceWritable = [files isWritableFileAtPath:source];
    plan.isSourceOnVolume = [source hasPrefix:kVolumesPrefix];
    NSString* folder = firstPath(
        NSSearchPathForDirectoriesInDomains(NSApplicationDirectory, NSUserDomainMask, YES));
    plan.isHomeFolder = holdsApplications(folder);
    if (!plan.isHomeFolder)
        folder = [NSSearchPathForDirectoriesInDomains(NSApplicationDirectory, NSLocalDomainMask,
                                                      YES) lastObject];
    folder = resolvedPath(folder);
    plan.destination = [folder stringByAppendingPathComponent:[source lastPathComponent]];
    plan.needsAuthorization = folder == nil || ![files isWritableFileAtPath:folder];
    return plan;
}

}  // namespace tav::ula
