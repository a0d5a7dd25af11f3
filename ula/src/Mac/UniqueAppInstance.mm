// SPDX-License-Identifier: MIT
#include "ula/UniqueAppInstance.h"

#include "ula/ScopedARPool.h"
#include "ula/foundation/debug/Log.h"
#include "ula/src/Mac/Bridge.h"

#import <AppKit/AppKit.h>

#include <cstring>
#include <unistd.h>

namespace tav::ula {

namespace {

constexpr const char* kSource = "src/Mac/UniqueAppInstance";
constexpr const char* kOpen = "/usr/bin/open";

bool restartFlag = false;
void* modalParentHandle = nullptr;

bool matches(NSDictionary* entry, NSString* appID) {
    return [[entry objectForKey:@"NSApplicationName"] isEqualToString:appID] ||
           [[entry objectForKey:@"NSApplicationBundleIdentifier"] isEqualToString:appID];
}

/// Nil when there is none.
NSDictionary* otherInstance(const FastString& appID) {
    NSString* const wanted = [NSString fromUTF8String:appID];
    const int ownProcess = [[NSProcessInfo processInfo] processIdentifier];
    for (NSDictionary* entry in [[NSWorkspace sharedWorkspace] launchedApplications])
        if (matches(entry, wanted) &&
            [[entry objectForKey:@"NSApplicationProcessIdentifier"] intValue] != ownProcess)
            return entry;
    return nil;
}

/// In memory that is never freed: the process is about to end. A path that is not ASCII is taken as
/// the file system spells it, so that its application is restarted, too.
char* lastingCopy(NSString* path) {
    const char* const ascii = [path canBeConvertedToEncoding:NSASCIIStringEncoding]
                                  ? [path cStringUsingEncoding:NSASCIIStringEncoding]
                                  : nullptr;
    return strdup(ascii != nullptr ? ascii : [path fileSystemRepresentation]);
}

/// A child in which the program cannot be run goes on as its parent does.
void open(char* path) {
    if (fork() != 0)
        return;
    char* const arguments[] = {const_cast<char*>(kOpen), path, nullptr};
    execv(kOpen, arguments);
}

}  // namespace

bool isUniqueAppInstance(const FastString& appID) {
    const ScopedARPool pool;
    return otherInstance(appID) == nil;
}

bool switchToAppInstance(const FastString& appID) {
    const ScopedARPool pool;
    NSDictionary* const other = otherInstance(appID);
    if (other == nil)
        return false;
    [[NSWorkspace sharedWorkspace] launchApplication:[other objectForKey:@"NSApplicationPath"]];
    return true;
}

void setRestartRequired(bool required) {
    restartFlag = required;
}

bool restartRequired() {
    return restartFlag;
}

void checkRestartApplicaiton() {
    if (!restartFlag)
        return;
    const ScopedARPool pool;
    NSString* path = [[[NSProcessInfo processInfo] arguments] objectAtIndex:0];
    debug::logf(kSource, 40, debug::LogLevelTrace, "executable path %*").add([path toUTF8String]);
    for (int i = 0; i < 3; ++i)
        path = [path stringByDeletingLastPathComponent];
    char* const bundle = lastingCopy(path);
    debug::logf(kSource, 48, debug::LogLevelTrace, "executable path %*").add([path toUTF8String]);
    debug::logf(kSource, 49, debug::LogLevelTrace, "path %*").add(bundle);
    open(bundle);
}

void* getModalParentHandle() {
    return modalParentHandle;
}

void setModalParentHandle(void* handle) {
    modalParentHandle = handle;
}

std::vector<RunningApplicationInfo> runningApplications() {
    const ScopedARPool pool;
    std::vector<RunningApplicationInfo> applications;
    for (NSDictionary* entry in [[NSWorkspace sharedWorkspace] launchedApplications])
        applications.push_back({textOf([entry objectForKey:@"NSApplicationName"]),
                                textOf([entry objectForKey:@"NSApplicationBundleIdentifier"]),
                                textOf([entry objectForKey:@"NSApplicationPath"]),
                                [[entry objectForKey:@"NSApplicationProcessIdentifier"] intValue]});
    return applications;
}

}  // namespace tav::ula
