// SPDX-License-Identifier: MIT
#import "ula/FileSystemWatcherObjCWrapper.h"

#import "ula/ObjCHelper.h"
#include "ula/ScopedARPool.h"

#import <AppKit/AppKit.h>

@implementation FileSystemWatcherInfoArgs

- (id)initWithPath:(NSString*)path what:(std::uint32_t)info {
    self = [super init];
    if (self != nil) {
        _path = [path retain];
        _info = info;
    }
    return self;
}

- (void)dealloc {
    [_path release];
    [super dealloc];
}

- (NSString*)path {
    return _path;
}

- (std::uint32_t)info {
    return _info;
}

@end

namespace tav::ula {

FileSystemWatcherObjCWrapper::FileSystemWatcherObjCWrapper(NSString* path, NSObject* target)
    : _target(target) {
    const ScopedARPool pool;
    if (![[NSFileManager defaultManager] isReadableFileAtPath:path])
        return;
    _watcher.reset(new FileSystemWatcher([path toStdString], false));
    _watcher->connect([this](const std::string& changedPath, FileSystemWatcherInfo info) {
        pathChanged(changedPath, info);
    });
}

FileSystemWatcherObjCWrapper::~FileSystemWatcherObjCWrapper() = default;

void FileSystemWatcherObjCWrapper::pathChanged(const std::string& path,
                                               FileSystemWatcherInfo info) {
    const ScopedARPool pool;
    FileSystemWatcherInfoArgs* const change =
        [[FileSystemWatcherInfoArgs alloc] initWithPath:[NSString fromStdString:path] what:info];
    NSArray* const modes =
        [[NSArray alloc] initWithObjects:NSEventTrackingRunLoopMode, NSDefaultRunLoopMode,
                                         NSModalPanelRunLoopMode, nil];
    [_target performSelectorOnMainThread:@selector(pathDidChange:)
                              withObject:change
                           waitUntilDone:NO
                                   modes:modes];
    [modes release];
    [change release];
}

}  // namespace tav::ula
