// SPDX-License-Identifier: MIT
#include "CoreServices/VolumeLinks.h"
#include "Foundation/ReplaceMethod.h"

#import <Foundation/Foundation.h>

namespace {

using Resolve = NSString* (*)(NSString*, SEL);
Resolve answerOfGNUstep = nullptr;

// What lies on a volume is named by its entry in /Volumes, as where volumes are mounted there. The
// rest, and what does not exist, is GNUstep's business.
NSString* resolveSymlinks(NSString* self, SEL selector) {
    if (![self hasPrefix:@"/"])
        return answerOfGNUstep(self, selector);
    const std::string resolved = coreservices::resolvedPath([self fileSystemRepresentation]);
    NSString* const text =
        resolved.empty() ? nil : [NSString stringWithUTF8String:resolved.c_str()];
    return text != nil ? text : answerOfGNUstep(self, selector);
}

}  // namespace

// A category of its own would lose GNUstep's method.
@interface ULAPathResolution : NSObject
@end

@implementation ULAPathResolution

+ (void)load {
    answerOfGNUstep = foundation::replaceInstanceMethod(
        "NSString", @selector(stringByResolvingSymlinksInPath), resolveSymlinks);
}

@end
