// SPDX-License-Identifier: MIT
#pragma once

#import <Foundation/Foundation.h>

namespace tav::ula {
class DriveWatcherMac;
}

/// Hears the workspace's notifications of volumes for a watcher, from `init:` to its end.
@interface DriveWatcherNotificationObserver : NSObject {
    tav::ula::DriveWatcherMac* _watcher;
}

- (id)init:(tav::ula::DriveWatcherMac*)watcher;
/// Hands nothing over any more.
- (void)forgetWatcher;
- (void)deviceMounted:(NSNotification*)notification;
- (void)deviceUnMounted:(NSNotification*)notification;

@end
