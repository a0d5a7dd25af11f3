// SPDX-License-Identifier: MIT
// GNUstep's copies grow under their final names, and what it has copied stays when it fails. Here a
// copy appears under its name when it is whole and on the disk, or not at all, and never in place
// of something that is there.
#import <Foundation/Foundation.h>

#include "AppKit/ItemCopy.h"
#include "AppKit/MoveItem.h"
#include "CoreFoundation/Descriptor.h"
#import "Foundation/NSFileManager+Trash.h"
#include "Foundation/ReplaceMethod.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <unistd.h>

using appkit::Place;

namespace {

using Copy = BOOL (*)(NSFileManager*, SEL, NSString*, NSString*, NSError**);

Copy copyOfGNUstep = nullptr;

std::string bytesOf(NSString* path) {
    const char* const bytes = path == nil ? nullptr : [path fileSystemRepresentation];
    return bytes == nullptr ? "" : bytes;
}

// A name that no other process takes for a whole item.
std::string nameWhileCopying(const std::string& name) {
    static int number = 0;
    return "." + name.substr(0, 200) + ".copy-" + std::to_string(getpid()) + "-" +
           std::to_string(__atomic_add_fetch(&number, 1, __ATOMIC_RELAXED));
}

// Fails: errno; 0 when done.
int copyWhole(const std::string& from, const std::string& to) {
    const size_t slash = to.rfind('/');
    const std::string folder =
        slash == std::string::npos ? "." : to.substr(0, std::max<size_t>(slash, 1));
    const std::string name = to.substr(slash == std::string::npos ? 0 : slash + 1);
    const cf::Descriptor parent(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!parent)
        return errno;
    if (faccessat(parent.get(), name.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0)
        return EEXIST;
    const Place growing = {parent.get(), nameWhileCopying(name)};
    if (const int error = appkit::copyItem({AT_FDCWD, from}, growing))
        return error;
    if (const int error = appkit::moveWithoutReplacing(growing, {parent.get(), name})) {
        appkit::removeItem(growing);
        return error;
    }
    return fsync(parent.get()) == 0 || errno == EINVAL ? 0 : errno;
}

NSInteger codeOf(int error) {
    switch (error) {
    case EEXIST:
        return NSFileWriteFileExistsError;
    case ENOENT:
        return NSFileNoSuchFileError;
    case EACCES:
    case EPERM:
        return NSFileWriteNoPermissionError;
    case ENOSPC:
    case EDQUOT:
        return NSFileWriteOutOfSpaceError;
    case EROFS:
        return NSFileWriteVolumeReadOnlyError;
    default:
        return NSFileWriteUnknownError;
    }
}

NSError* errorOf(int error, NSString* path) {
    NSDictionary* const details = [NSDictionary
        dictionaryWithObjectsAndKeys:[NSString stringWithFormat:@"\"%@\" could not be copied: %s",
                                                                [path lastPathComponent],
                                                                std::strerror(error)],
                                     NSLocalizedDescriptionKey, path, NSFilePathErrorKey,
                                     [NSError errorWithDomain:NSPOSIXErrorDomain
                                                         code:error
                                                     userInfo:nil],
                                     NSUnderlyingErrorKey, nil];
    return [NSError errorWithDomain:NSCocoaErrorDomain code:codeOf(error) userInfo:details];
}

// Delegates are asked for each item on the way, which is GNUstep's business.
BOOL copyItem(NSFileManager* self, SEL selector, NSString* from, NSString* to, NSError** error) {
    if ([self delegate] != nil || [from length] == 0 || [to length] == 0)
        return copyOfGNUstep(self, selector, from, to, error);
    const int failure = copyWhole(bytesOf(from), bytesOf(to));
    if (failure != 0 && error != nullptr)
        *error = errorOf(failure, from);
    return failure == 0;
}

}  // namespace

@interface ULACopies : NSObject
@end

@implementation ULACopies

+ (void)load {
    copyOfGNUstep = foundation::replaceInstanceMethod(
        "NSFileManager", @selector(copyItemAtPath:toPath:error:), copyItem);
}

@end
