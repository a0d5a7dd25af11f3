// SPDX-License-Identifier: MIT
// GNUstep's file manager waits for ever for the sizes of a share whose server is gone. It is asked
// as before where the kernel answers on its own; the others have a deadline.
#import <Foundation/Foundation.h>

#include "CoreServices/MountLookup.h"
#include "Foundation/FileSystemSpace.h"
#include "Foundation/ReplaceMethod.h"

#include <cerrno>

namespace {

using Attributes = NSDictionary* (*)(id, SEL, NSString*);
using AttributesOrError = NSDictionary* (*)(id, SEL, NSString*, NSError**);

constexpr std::chrono::milliseconds kPatience{500};

Attributes originalAttributes = nullptr;
AttributesOrError originalAttributesOrError = nullptr;

NSNumber* number(uint64_t value) {
    return [NSNumber numberWithUnsignedLongLong:value];
}

NSDictionary* dictionaryOf(const foundation::FileSystemSpace& space) {
    return @{
        NSFileSystemSize : number(space.size),
        NSFileSystemFreeSize : number(space.free),
        NSFileSystemNodes : number(space.nodes),
        NSFileSystemFreeNodes : number(space.freeNodes),
        NSFileSystemNumber : number(space.number)
    };
}

// Whether the original would wait for somebody. Stores what was learned without it, or nil.
bool answeredFor(NSString* path, NSDictionary** answer) {
    const char* bytes = path == nil ? nullptr : [path fileSystemRepresentation];
    coreservices::MountList mounts = coreservices::currentMounts();
    const coreservices::Mount* mount = bytes != nullptr ? mountOf(bytes, *mounts) : nullptr;
    if (mount == nullptr || answersByItself(*mount))
        return false;
    auto space = foundation::askForSpace(mount->point, kPatience);
    *answer = space ? dictionaryOf(*space) : nil;
    return true;
}

NSDictionary* fileSystemAttributes(id self, SEL command, NSString* path) {
    NSDictionary* answer = nil;
    return answeredFor(path, &answer) ? answer : originalAttributes(self, command, path);
}

NSDictionary* fileSystemAttributesOrError(id self, SEL command, NSString* path, NSError** error) {
    NSDictionary* answer = nil;
    if (!answeredFor(path, &answer))
        return originalAttributesOrError(self, command, path, error);
    if (answer == nil && error != nullptr)
        *error = [NSError errorWithDomain:NSPOSIXErrorDomain code:ETIMEDOUT userInfo:nil];
    return answer;
}

}  // namespace

@interface ULAFileManagerSpace : NSObject
@end

@implementation ULAFileManagerSpace

+ (void)load {
    originalAttributes = foundation::replaceInstanceMethod(
        "NSFileManager", @selector(fileSystemAttributesAtPath:), fileSystemAttributes);
    originalAttributesOrError = foundation::replaceInstanceMethod(
        "NSFileManager", @selector(attributesOfFileSystemForPath:error:),
        fileSystemAttributesOrError);
}

@end
