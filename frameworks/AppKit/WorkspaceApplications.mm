// SPDX-License-Identifier: MIT
// GNUstep's workspace lists the applications that say so themselves, without their identifiers, and
// keeps those that have crashed. Here they are what runs.
#import <AppKit/AppKit.h>

#include "AppKit/LaunchApplication.h"
#include "AppKit/RunningApplications.h"
#include "Foundation/ReplaceMethod.h"

using appkit::RunningApplication;

namespace {

using LaunchApplication = BOOL (*)(id, SEL, NSString*);

LaunchApplication originalLaunchApplication = nullptr;

// Nil for nothing, and for bytes that are no text.
NSString* textOf(const std::string& bytes) {
    return bytes.empty() ? nil : [NSString stringWithUTF8String:bytes.c_str()];
}

void put(NSMutableDictionary* entry, NSString* key, id value) {
    if (value != nil)
        [entry setObject:value forKey:key];
}

NSArray* launchedApplications(id, SEL) {
    NSMutableArray* list = [NSMutableArray array];
    for (const RunningApplication& application : appkit::runningApplications()) {
        NSMutableDictionary* entry = [NSMutableDictionary dictionary];
        put(entry, @"NSApplicationName", textOf(application.identity.name));
        put(entry, @"NSApplicationPath", textOf(application.identity.path));
        put(entry, @"NSApplicationBundleIdentifier", textOf(application.identity.identifier));
        put(entry, @"NSApplicationProcessIdentifier", [NSNumber numberWithInt:application.process]);
        [list addObject:entry];
    }
    return list;
}

BOOL launchApplication(id self, SEL command, NSString* name) {
    const char* path = [name isAbsolutePath] ? [name fileSystemRepresentation] : nullptr;
    if (path != nullptr && appkit::openApplication(path))
        return YES;
    return originalLaunchApplication(self, command, name);
}

}  // namespace

@interface ULAWorkspaceApplications : NSObject
@end

@implementation ULAWorkspaceApplications

+ (void)load {
    foundation::replaceInstanceMethod("NSWorkspace", @selector(launchedApplications),
                                      launchedApplications);
    originalLaunchApplication = foundation::replaceInstanceMethod(
        "NSWorkspace", @selector(launchApplication:), launchApplication);
}

@end
