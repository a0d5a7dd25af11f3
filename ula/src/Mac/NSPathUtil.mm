// SPDX-License-Identifier: MIT
#import "ula/NSPathUtil.h"

#import "ula/ObjCHelper.h"
#include "ula/ScopedARPool.h"
#include "ula/src/Mac/VolumesFolder.h"

#import <AppKit/AppKit.h>
#include <mutex>
#include <sys/stat.h>

namespace {

/// Whether the entry is a link to the system's root directory.
bool leadsToRoot(NSString* path) {
    if (![NSPathUtil isLink:path])
        return false;
    NSFileWrapper* const wrapper = [[NSFileWrapper alloc] initWithPath:path];
    const bool leads = [wrapper isSymbolicLink] &&
                       [[wrapper symbolicLinkDestination] isEqual:NSOpenStepRootDirectory()];
    [wrapper release];
    return leads;
}

NSString* findNameForRootDisk() {
    NSFileManager* const files = [NSFileManager defaultManager];
    for (NSString* entry in [files directoryContentsAtPath:@"/Volumes"]) {
        if (leadsToRoot([tav::ula::kVolumesPrefix stringByAppendingString:entry]))
            return entry;
    }
    return [files displayNameAtPath:@"/"];
}

}  // namespace

@implementation NSPathUtil

+ (NSString*)getNameForRootDisk {
    static NSString* name = nil;
    // Several threads may ask first.
    static std::once_flag once;
    std::call_once(once, [] {
        const tav::ula::ScopedARPool pool;
        name = [findNameForRootDisk() retain];
    });
    return name;
}

+ (NSString*)normalizeToRootDisk:(NSString*)path {
    return [[path copy] autorelease];
}

+ (BOOL)isLink:(NSString*)path {
    struct stat item {};
    if (lstat([path fileSystemRepresentation], &item) != 0)
        return NO;
    return S_ISLNK(item.st_mode);
}

@end

namespace tav::ula::NSPathUtilNameSpace {

std::string nameForRootDisk() {
    const ScopedARPool pool;
    return [[NSPathUtil getNameForRootDisk] toStdString];
}

std::string normalizeMacPathToRoot(const std::string& path) {
    const ScopedARPool pool;
    NSString* const text = [NSString fromStdString:path];
    // Bytes that are no text are a path all the same.
    return text == nil ? path : [[NSPathUtil normalizeToRootDisk:text] toStdString];
}

}  // namespace tav::ula::NSPathUtilNameSpace
