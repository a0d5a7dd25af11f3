// SPDX-License-Identifier: MIT
// GNUstep's workspace hands every file operation to a workspace application, and answers NO where
// none runs. The recycle operation is taken over here; the others stay as they are.
#import <AppKit/NSWorkspace.h>
#import <Foundation/Foundation.h>

#include "AppKit/Trash.h"
#include "Foundation/ReplaceMethod.h"

namespace {

using PerformFileOperation = BOOL (*)(id, SEL, NSString*, NSString*, NSString*, NSArray*,
                                      NSInteger*);

PerformFileOperation originalPerform = nullptr;

std::string bytesOf(NSString* text) {
    const char* bytes = [text UTF8String];
    return bytes != nullptr ? bytes : "";
}

// One path for each name; nothing when a name is none, so that a folder is never taken for an item
// in it. Without a folder the names are those of the working folder, not of "/".
std::vector<std::string> pathsOf(NSString* folder, NSArray* names) {
    std::vector<std::string> paths;
    std::string source = bytesOf(folder);
    if (!source.empty())
        source += "/";
    for (NSString* name in names) {
        std::string leaf = bytesOf(name);
        if (leaf.empty() || leaf.find('/') != std::string::npos)
            return {};
        paths.push_back(source + leaf);
    }
    return paths;
}

BOOL performFileOperation(id self, SEL command, NSString* operation, NSString* source,
                          NSString* destination, NSArray* files, NSInteger* tag) {
    if (![operation isEqualToString:NSWorkspaceRecycleOperation])
        return originalPerform(self, command, operation, source, destination, files, tag);
    std::vector<std::string> paths = pathsOf(source, files);
    bool done = paths.size() == [files count] && appkit::recycle(paths);
    // The work is over when this returns: 0, or negative where it failed.
    if (tag != nullptr)
        *tag = done ? 0 : -1;
    return done ? YES : NO;
}

}  // namespace

@interface ULAWorkspaceRecycle : NSObject
@end

@implementation ULAWorkspaceRecycle

+ (void)load {
    originalPerform = foundation::replaceInstanceMethod(
        "NSWorkspace", @selector(performFileOperation:source:destination:files:tag:),
        performFileOperation);
}

@end
