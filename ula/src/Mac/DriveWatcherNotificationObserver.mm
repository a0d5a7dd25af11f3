// SPDX-License-Identifier: MIT
#include "ula/src/Mac/DriveWatcherNotificationObserver.h"

#import "ula/ObjCHelper.h"
#include "ula/ScopedARPool.h"
#include "ula/src/Mac/DriveWatcherMac.h"

#import <AppKit/AppKit.h>

using tav::ula::ScopedARPool;

namespace {

/// Nil when the notification names none.
NSString* devicePath(NSNotification* notification) {
    return [[[notification userInfo] valueForKey:@"NSDevicePath"] description];
}

}  // namespace

@implementation DriveWatcherNotificationObserver

- (id)init:(tav::ula::DriveWatcherMac*)watcher {
    self = [super init];
    if (self == nil)
        return nil;
    _watcher = watcher;
    const ScopedARPool pool;
    NSNotificationCenter* const center = [[NSWorkspace sharedWorkspace] notificationCenter];
    [center addObserver:self
               selector:@selector(deviceMounted:)
                   name:NSWorkspaceDidMountNotification
                 object:nil];
    [center addObserver:self
               selector:@selector(deviceUnMounted:)
                   name:NSWorkspaceDidUnmountNotification
                 object:nil];
    return self;
}

- (void)forgetWatcher {
    _watcher = nullptr;
}

// The watcher may end in these two, and this object with it.
- (void)deviceMounted:(NSNotification*)notification {
    const ScopedARPool pool;
    NSString* const path = devicePath(notification);
    if (path != nil && _watcher != nullptr)
        _watcher->deviceMounted([path toStdString]);
}

- (void)deviceUnMounted:(NSNotification*)notification {
    const ScopedARPool pool;
    NSString* const path = devicePath(notification);
    if (path != nil && _watcher != nullptr)
        _watcher->deviceUnMounted([path toStdString]);
}

- (void)dealloc {
    {
        const ScopedARPool pool;
        [[[NSWorkspace sharedWorkspace] notificationCenter] removeObserver:self];
    }
    [super dealloc];
}

@end
