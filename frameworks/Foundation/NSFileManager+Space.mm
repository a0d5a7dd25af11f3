// SPDX-License-Identifier: MIT
// GNUstep's file manager waits for ever for the sizes of a share whose server is gone. It is asked
// as before where the kernel answers on its own; the others have a deadline.
#import <Foundation/Foundation.h>

#include "CoreServices/MountLookup.h"
#include "Foundation/FileSystemSpace.h"

#include <cerrno>
#include <objc/runtime.h>

namespace {

using FileSystemAttributes = NSDictionary* (*)(id, SEL, NSString*);

constexpr std::chrono::milliseconds kPatience{500};

FileSystemAttributes originalAttributes = nullptr;

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

NSDictionary* fileSystemAttributes(id self, SEL command, NSString* path) {
    const char* bytes = path == nil ? nullptr : [path fileSystemRepresentation];
    coreservices::MountList mounts = coreservices::currentMounts();
    const coreservices::Mount* mount = bytes != nullptr ? mountOf(bytes, *mounts) : nullptr;
    if (mount == nullptr || answersByItself(*mount))
        return originalAttributes(self, command, path);
    auto space = foundation::askForSpace(mount->point, kPatience);
    return space ? dictionaryOf(*space) : nil;
}

}  // namespace

@interface ULFileManagerSpace : NSObject
@end

@implementation ULFileManagerSpace

+ (void)load {
    Method method = class_getInstanceMethod(objc_getClass("NSFileManager"),
                                            @selector(fileSystemAttributesAtPath:));
    originalAttributes = reinterpret_cast<FileSystemAttributes>(
        method_setImplementation(method, reinterpret_cast<IMP>(fileSystemAttributes)));
}

@end
