// SPDX-License-Identifier: MIT
// Tasks that run the platform's programs, and scripts that call them, find ours.
#import <Foundation/Foundation.h>

#include "AppKit/PlatformPrograms.h"
#include "Foundation/ReplaceMethod.h"

#include <objc/runtime.h>

namespace {

using Launch = void (*)(id, SEL);

Launch launchBefore = nullptr;

NSString* textOf(const std::string& bytes) {
    return [NSString stringWithUTF8String:bytes.c_str()];
}

bool isScript(NSTask* task) {
    NSArray* const arguments = [task arguments];
    return [[task launchPath] isEqualToString:@"/bin/sh"] && [arguments count] >= 2 &&
           [[arguments objectAtIndex:0] isEqualToString:@"-c"];
}

void useOurPrograms(NSTask* task) {
    if (isScript(task)) {
        NSMutableArray* const arguments = [[[task arguments] mutableCopy] autorelease];
        const char* const script = [[arguments objectAtIndex:1] UTF8String];
        NSString* const replaced = textOf(appkit::withPlatformPrograms(script));
        [arguments replaceObjectAtIndex:1 withObject:replaced];
        [task setArguments:arguments];
    } else if ([[task launchPath] hasPrefix:@"/usr/bin/"]) {
        const std::string program = appkit::platformProgram([[task launchPath] UTF8String]);
        if (!program.empty())
            [task setLaunchPath:textOf(program)];
    }
}

void launch(id task, SEL selector) {
    useOurPrograms(task);
    launchBefore(task, selector);
}

}  // namespace

@interface ULAPlatformTasks : NSObject
@end

@implementation ULAPlatformTasks

// Tasks are made of a class below the public one.
+ (void)load {
    Class const concrete = objc_getClass("NSConcreteUnixTask");
    const Method method = class_getInstanceMethod(
        concrete != Nil ? concrete : objc_getClass("NSTask"), @selector(launch));
    launchBefore = foundation::replaceMethod(method, launch);
}

@end
