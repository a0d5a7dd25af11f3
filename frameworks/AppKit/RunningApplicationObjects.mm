// SPDX-License-Identifier: MIT
// GNUstep has the class of running applications, and no objects of it.
#import <AppKit/AppKit.h>
#import <AppKit/NSRunningApplication.h>

#include "AppKit/LaunchApplication.h"
#include "AppKit/ProcessTable.h"
#include "AppKit/RunningApplications.h"
#include "Foundation/ReplaceMethod.h"

#include <csignal>
#include <unistd.h>

using appkit::RunningApplication;

@interface ULARunningApplication : NSRunningApplication {
    RunningApplication _application;
}
- (id)initWithApplication:(const RunningApplication&)application;
@end

namespace {

// Nil for nothing, and for bytes that are no text.
NSString* textOf(const std::string& bytes) {
    return bytes.empty() ? nil : [NSString stringWithUTF8String:bytes.c_str()];
}

NSURL* urlOf(const std::string& path) {
    NSString* text = textOf(path);
    return text == nil ? nil : [NSURL fileURLWithPath:text];
}

template <class Condition>
NSArray* objectsWhere(Condition isWanted) {
    NSMutableArray* list = [NSMutableArray array];
    for (const RunningApplication& application : appkit::runningApplications())
        if (isWanted(application))
            [list addObject:[[[ULARunningApplication alloc] initWithApplication:application]
                                autorelease]];
    return list;
}

NSArray* runningApplications(id, SEL) {
    return objectsWhere([](const RunningApplication&) { return true; });
}

NSArray* runningApplicationsWithIdentifier(id, SEL, NSString* identifier) {
    const std::string wanted = identifier == nil ? "" : [identifier UTF8String];
    return objectsWhere([&](const RunningApplication& application) {
        return !wanted.empty() && application.identity.identifier == wanted;
    });
}

id runningApplicationWithProcess(id, SEL, pid_t process) {
    return [objectsWhere([process](const RunningApplication& application) {
        return application.process == process;
    }) lastObject];
}

id currentApplication(id self, SEL) {
    return runningApplicationWithProcess(self, nullptr, getpid());
}

}  // namespace

@implementation ULARunningApplication

+ (void)load {
    const char* const applications = "NSRunningApplication";
    foundation::replaceClassMethod(applications,
                                   @selector(runningApplicationsWithBundleIdentifier:),
                                   runningApplicationsWithIdentifier);
    foundation::replaceClassMethod(applications,
                                   @selector(runningApplicationWithProcessIdentifier:),
                                   runningApplicationWithProcess);
    foundation::replaceClassMethod(applications, @selector(currentApplication), currentApplication);
    foundation::replaceInstanceMethod("NSWorkspace", @selector(runningApplications),
                                      runningApplications);
}

- (id)initWithApplication:(const RunningApplication&)application {
    self = [super init];
    if (self != nil)
        _application = application;
    return self;
}

- (NSString*)localizedName {
    return textOf(_application.identity.name);
}

- (NSString*)bundleIdentifier {
    return textOf(_application.identity.identifier);
}

- (NSURL*)bundleURL {
    const std::string& path = _application.identity.path;
    return path == _application.program ? nil : urlOf(path);
}

- (NSURL*)executableURL {
    return urlOf(_application.program);
}

- (pid_t)processIdentifier {
    return _application.process;
}

// A process that was given the number since has begun at another time.
- (BOOL)isTerminated {
    const auto origin = appkit::ProcessTable().origin(_application.process);
    return !origin || origin->startTicks != _application.startTicks ||
           appkit::ProcessTable().program(_application.process).empty();
}

- (BOOL)activateWithOptions:(NSApplicationActivationOptions)options {
    return ![self isTerminated] && appkit::activate(_application);
}

- (BOOL)terminate {
    return ![self isTerminated] && kill(_application.process, SIGTERM) == 0;
}

- (BOOL)forceTerminate {
    return ![self isTerminated] && kill(_application.process, SIGKILL) == 0;
}

- (BOOL)isEqual:(id)other {
    return [other isKindOfClass:[ULARunningApplication class]] &&
           [other processIdentifier] == _application.process &&
           static_cast<ULARunningApplication*>(other)->_application.startTicks ==
               _application.startTicks;
}

- (NSUInteger)hash {
    return static_cast<NSUInteger>(_application.process);
}

@end
