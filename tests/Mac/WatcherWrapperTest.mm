// SPDX-License-Identifier: MIT
#import "ula/FileSystemWatcherObjCWrapper.h"

#include "tests/support/Patience.h"
#include "tests/support/TemporaryFolder.h"
#import "ula/ObjCHelper.h"
#include "ula/ScopedARPool.h"

#import <AppKit/AppKit.h>
#include <chrono>
#include <gmock/gmock.h>
#include <thread>

using tav::ula::FileSystemWatcherObjCWrapper;
using tav::ula::PathChanged;
using tav::ula::PathRemoved;

/// A client on the main thread.
@interface WatcherClient : NSObject <FileSystemWatcherClient> {
@public
    std::vector<std::string> told;
    bool isMainThread;
}
@end

@implementation WatcherClient

- (void)pathDidChange:(FileSystemWatcherInfoArgs*)change {
    told.push_back([[change path] toStdString] + " " + std::to_string([change info]));
    isMainThread = [NSThread isMainThread];
}

@end

/// A client that writes down how it is called.
@interface SpyingClient : WatcherClient {
@public
    std::vector<std::string> calls;
}
@end

@implementation SpyingClient

- (void)performSelectorOnMainThread:(SEL)selector
                         withObject:(id)object
                      waitUntilDone:(BOOL)isWaiting
                              modes:(NSArray*)modes {
    calls.push_back([NSStringFromSelector(selector) toStdString] + (isWaiting ? " waits" : "") +
                    " " + [[modes componentsJoinedByString:@" "] toStdString]);
    [self pathDidChange:object];
}

@end

namespace tav::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Clock = std::chrono::steady_clock;

class WatcherWrapper : public testing::Test {
protected:
    WatcherWrapper() { writeFile(file, "text"); }

    /// Runs the main run loop until the client was told.
    static void runUntilTold(WatcherClient* client) {
        const auto deadline = Clock::now() + kPatience;
        while (client->told.empty() && Clock::now() < deadline)
            [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                                     beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.05]];
    }

    const ula::ScopedARPool pool;
    TemporaryFolder folder;
    const std::string file = folder / "file";
    NSString* const path = [NSString fromStdString:file];
};

TEST_F(WatcherWrapper, ChangeComesOnTheMainThread) {
    WatcherClient* const client = [[[WatcherClient alloc] init] autorelease];
    const FileSystemWatcherObjCWrapper wrapper(path, client);
    appendToFile(file, "changed");
    runUntilTold(client);
    EXPECT_THAT(client->told, ElementsAre(file + " 1"));
    EXPECT_TRUE(client->isMainThread);
}

TEST_F(WatcherWrapper, MessageGoesInTheModesOfMenusAndPanelsToo) {
    SpyingClient* const client = [[[SpyingClient alloc] init] autorelease];
    FileSystemWatcherObjCWrapper wrapper(path, client);
    wrapper.pathChanged("/some/path", PathRemoved);
    EXPECT_THAT(client->calls,
                ElementsAre([[NSString
                    stringWithFormat:@"pathDidChange: %@ %@ %@", NSEventTrackingRunLoopMode,
                                     NSDefaultRunLoopMode, NSModalPanelRunLoopMode] toStdString]));
    EXPECT_THAT(client->told, ElementsAre("/some/path 0"));
}

TEST_F(WatcherWrapper, WhatCannotBeReadIsNotWatched) {
    WatcherClient* const client = [[[WatcherClient alloc] init] autorelease];
    const FileSystemWatcherObjCWrapper wrapper(@"/nonexistent/file", client);
    EXPECT_EQ(ula::FileSystemWatcher::getDebugString(), " - no instance\n");
}

TEST_F(WatcherWrapper, ArgumentsKeepThePath) {
    NSString* const text = [[NSString alloc] initWithUTF8String:"/a"];
    const NSUInteger before = [text retainCount];
    FileSystemWatcherInfoArgs* const change =
        [[FileSystemWatcherInfoArgs alloc] initWithPath:text what:PathChanged];
    EXPECT_EQ([text retainCount], before + 1);
    EXPECT_EQ([change info], 1u);
    [change release];
    EXPECT_EQ([text retainCount], before);
    [text release];
}

}  // namespace

}  // namespace tav::test
