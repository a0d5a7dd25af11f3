// SPDX-License-Identifier: MIT
#import <Foundation/Foundation.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <unistd.h>

namespace {

NSInteger codeOf(int error) {
    if (error == ENOENT || error == ENOTDIR)
        return NSFileReadNoSuchFileError;
    return error == EACCES ? NSFileReadNoPermissionError : NSFileReadUnknownError;
}

NSError* errorOf(int error, NSString* path) {
    NSDictionary* const details = [NSDictionary
        dictionaryWithObjectsAndKeys:[NSString stringWithUTF8String:std::strerror(error)],
                                     NSLocalizedDescriptionKey, path, NSFilePathErrorKey, nil];
    return [NSError errorWithDomain:NSCocoaErrorDomain code:codeOf(error) userInfo:details];
}

}  // namespace

@implementation NSFileManager (ULALinks)

- (NSString*)destinationOfSymbolicLinkAtPath:(NSString*)path error:(NSError**)error {
    char target[PATH_MAX];
    const ssize_t length = readlink([path fileSystemRepresentation], target, sizeof target);
    if (length >= 0)
        return [self stringWithFileSystemRepresentation:target
                                                 length:static_cast<NSUInteger>(length)];
    if (error != nullptr)
        *error = errorOf(errno, path);
    return nil;
}

@end
