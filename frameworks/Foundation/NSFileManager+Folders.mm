// SPDX-License-Identifier: MIT
#import <Foundation/Foundation.h>

#include "Foundation/UserFolders.h"

#include <map>
#include <mutex>

namespace {

struct UserFolder {
    NSSearchPathDirectory directory;
    const char* name;    // in the desktop's file
    const char* inHome;  // where the desktop says nothing
};

constexpr UserFolder kFolders[] = {{NSDocumentDirectory, "DOCUMENTS", "/Documents"},
                                   {NSMoviesDirectory, "VIDEOS", "/Movies"},
                                   {NSMusicDirectory, "MUSIC", "/Music"},
                                   {NSPicturesDirectory, "PICTURES", "/Pictures"}};

// Empty for what there is none of.
std::string pathOf(NSSearchPathDirectory directory, const std::string& home) {
    if (directory == NSApplicationSupportDirectory)
        return foundation::dataFolder(home);
    for (const UserFolder& folder : kFolders)
        if (folder.directory == directory)
            return foundation::userFolder(folder.name, home).value_or(home + folder.inHome);
    return {};
}

// URLs of folders are costly to make, and there are few. Nil when the path is no text.
NSURL* urlOf(const std::string& path) {
    static std::mutex mutex;
    static auto* const known = new std::map<std::string, NSURL*>;
    const std::lock_guard lock(mutex);
    auto [entry, isNew] = known->try_emplace(path, nil);
    NSString* const text = isNew ? [NSString stringWithUTF8String:path.c_str()] : nil;
    // Said to be a folder: otherwise it would be asked, and its disk may not answer.
    if ([text length] > 0)
        entry->second = [[NSURL alloc] initFileURLWithPath:text isDirectory:YES];
    return entry->second;
}

}  // namespace

@implementation NSFileManager (ULAFolders)

- (NSArray*)URLsForDirectory:(NSSearchPathDirectory)directory
                   inDomains:(NSSearchPathDomainMask)domains {
    const bool isUsers = (domains & NSUserDomainMask) != 0;
    NSURL* const url = isUsers ? urlOf(pathOf(directory, [NSHomeDirectory() UTF8String])) : nil;
    return url == nil ? [NSArray array] : [NSArray arrayWithObject:url];
}

@end
