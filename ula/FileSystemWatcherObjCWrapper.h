// SPDX-License-Identifier: MIT
// Changes of an item for Cocoa code, told on the main thread. For Objective-C++.
#pragma once

#include "ula/Export.h"
#include "ula/FileSystemWatcher.h"
#include "ula/foundation/util/ScopedPtr.h"

#import <Foundation/Foundation.h>

/// What has happened to a path.
ULA_API
@interface FileSystemWatcherInfoArgs : NSObject {
@private
    NSString* _path;
    std::uint32_t _info;
}

- (id)initWithPath:(NSString*)path what:(std::uint32_t)info;
- (NSString*)path;
/// A `FileSystemWatcherInfo`.
- (std::uint32_t)info;

@end

/// What the target has to answer.
@protocol FileSystemWatcherClient

/// Comes on the main thread, during the tracking of menus and in modal panels, too.
- (void)pathDidChange:(FileSystemWatcherInfoArgs*)change;

@end

namespace tav::ula {

/// Watches one item, not what lies below it, and tells a Cocoa object.
/// Thread: as `FileSystemWatcher`.
/// Fails: what cannot be read is not watched.
class ULA_API FileSystemWatcherObjCWrapper {
public:
    /// The target is not retained: it must outlive this object, and messages that are under way
    /// retain it.
    FileSystemWatcherObjCWrapper(NSString* path, NSObject* target);
    FileSystemWatcherObjCWrapper(const FileSystemWatcherObjCWrapper&) = delete;
    FileSystemWatcherObjCWrapper& operator=(const FileSystemWatcherObjCWrapper&) = delete;
    ~FileSystemWatcherObjCWrapper();

    /// Sends `pathDidChange:` to the target. Thread: any.
    void pathChanged(const std::string& path, FileSystemWatcherInfo info);

private:
    util::ScopedPtr<FileSystemWatcher> _watcher;
    NSObject* _target;
};

}  // namespace tav::ula
