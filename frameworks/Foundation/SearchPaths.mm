// SPDX-License-Identifier: MIT
#import "SearchPaths.h"

#import "HomeDirectory.h"
#include "UserFolders.h"

#import <Foundation/Foundation.h>
#include <initializer_list>
#undef NSSearchPathForDirectoriesInDomains

namespace {

void addTexts(NSMutableArray* paths, std::initializer_list<const char*> texts) {
    for (const char* text : texts)
        [paths addObject:[NSString stringWithUTF8String:text]];
}

void addInHome(NSMutableArray* paths, std::initializer_list<const char*> texts) {
    for (const char* text : texts)
        [paths addObject:[ULAHomeDirectory()
                             stringByAppendingPathComponent:[NSString stringWithUTF8String:text]]];
}

void addOfGNUstep(NSMutableArray* paths, NSSearchPathDomainMask domain) {
    [paths addObjectsFromArray:NSSearchPathForDirectoriesInDomains(NSApplicationDirectory, domain,
                                                                   YES)];
}

// What packages, sandboxes and administrators install is where it belongs, too.
NSArray* applicationFolders(NSSearchPathDomainMask domains) {
    NSMutableArray* const paths = [NSMutableArray array];
    if (domains & NSUserDomainMask) {
        addInHome(paths, {"Applications"});
        addOfGNUstep(paths, NSUserDomainMask);
        addInHome(paths, {".local/bin", "bin"});
    }
    if (domains & NSLocalDomainMask) {
        addOfGNUstep(paths, NSLocalDomainMask);
        addTexts(paths, {"/usr/local", "/opt", "/Applications"});
    }
    if (domains & NSNetworkDomainMask)
        addOfGNUstep(paths, NSNetworkDomainMask);
    if (domains & NSSystemDomainMask) {
        addOfGNUstep(paths, NSSystemDomainMask);
        addTexts(paths,
                 {"/usr/bin", "/usr/games", "/usr/lib", "/usr/sbin", "/usr/share", "/app/bin",
                  "/app/lib", "/app/share", "/snap", "/nix/store", "/gnu/store"});
    }
    return paths;
}

// A home folder that stands for a folder of downloads that the user does not want is none.
NSArray* downloadFolders(NSSearchPathDomainMask domains) {
    if (!(domains & NSUserDomainMask))
        return [NSArray array];
    const std::string home = [ULAHomeDirectory() UTF8String];
    const std::string folder = foundation::userFolder("DOWNLOAD", home).value_or(home);
    NSMutableArray* const paths = [NSMutableArray array];
    if (folder == home)
        addInHome(paths, {"Downloads"});
    else
        addTexts(paths, {folder.c_str()});
    return paths;
}

}  // namespace

NSArray* ULASearchPathForDirectoriesInDomains(NSSearchPathDirectory directory,
                                              NSSearchPathDomainMask domains, BOOL expandTilde) {
    NSArray* paths = nil;
    if (directory == NSApplicationDirectory)
        paths = applicationFolders(domains);
    else if (directory == NSDownloadsDirectory)
        paths = downloadFolders(domains);
    else
        return NSSearchPathForDirectoriesInDomains(directory, domains, expandTilde);
    if (expandTilde)
        return paths;
    NSMutableArray* const abbreviated = [NSMutableArray array];
    for (NSString* path in paths)
        [abbreviated addObject:[path stringByAbbreviatingWithTildeInPath]];
    return abbreviated;
}
