// SPDX-License-Identifier: MIT
#include "ula/src/Core/SpecialFoldersMac.h"

#include "ula/ModuleMac.h"
#import "ula/NSPathUtil.h"
#import "ula/ObjCHelper.h"
#include "ula/ScopedARPool.h"

#import <Foundation/Foundation.h>

namespace tav::ula {

namespace {

/// Empty for nil.
FastString normalized(NSString* path) {
    if (path == nil)
        return FastString();
    return NSPathUtilNameSpace::normalizeMacPathToRoot([path toStdString]);
}

/// A folder that the user may have elsewhere than right in the home folder.
FastString userFolder(NSSearchPathDirectory directory) {
    const ScopedARPool pool;
    NSArray* const urls = [[NSFileManager defaultManager] URLsForDirectory:directory
                                                                 inDomains:NSUserDomainMask];
    return normalized([[urls objectAtIndex:0] path]);
}

NSBundle* bundleOf(const Module* module) {
    if (module == nullptr)
        return [NSBundle mainBundle];
    return static_cast<NSBundle*>(static_cast<const ModuleMac*>(module)->getBundle());
}

}  // namespace

FastString SpecialFoldersMac::home() {
    const ScopedARPool pool;
    return normalized(NSHomeDirectory());
}

FastString SpecialFoldersMac::tempPath() {
    const ScopedARPool pool;
    return normalized(NSTemporaryDirectory());
}

FastString SpecialFoldersMac::myDocuments() {
    return userFolder(NSDocumentDirectory);
}

FastString SpecialFoldersMac::myPictures() {
    return userFolder(NSPicturesDirectory);
}

FastString SpecialFoldersMac::myMovies() {
    return userFolder(NSMoviesDirectory);
}

FastString SpecialFoldersMac::myMusic() {
    return userFolder(NSMusicDirectory);
}

FastString SpecialFoldersMac::applicationSupportPath() {
    return userFolder(NSApplicationSupportDirectory);
}

FastString SpecialFoldersMac::myApplicationResourcePath(const Module* module) {
    const ScopedARPool pool;
    return normalized([bundleOf(module) resourcePath]);
}

FastString SpecialFoldersMac::myApplicationFrameworkPath(const Module* module) {
    const ScopedARPool pool;
    return normalized([bundleOf(module) privateFrameworksPath]);
}

FastString SpecialFoldersMac::myApplicationExecutionPath(const Module* module) {
    const ScopedARPool pool;
    return normalized([[bundleOf(module) bundlePath] stringByDeletingLastPathComponent]);
}

}  // namespace tav::ula
