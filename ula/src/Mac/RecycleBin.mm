// SPDX-License-Identifier: MIT
#include "ula/RecycleBin.h"

#import "ula/ObjCHelper.h"
#include "ula/ScopedARPool.h"
#include "ula/foundation/filesystem/FileSystem.h"

#import <AppKit/AppKit.h>
#import <Foundation/NSFileManager+Trash.h>
#include <sys/stat.h>

namespace tav::ula {

namespace {

/// The item's name in its folder; empty when it is neither file nor folder.
FastString nameOfItem(const FastString& path) {
    if (filesystem::isRegularFile(path))
        return filesystem::leaf(path);
    if (filesystem::isDirectory(path))
        return filesystem::leaf(filesystem::folderName(path));
    return FastString();
}

/// In which folder and under which name the workspace finds it.
bool recycle(NSString* folder, NSString* name) {
    return [[NSWorkspace sharedWorkspace] performFileOperation:NSWorkspaceRecycleOperation
                                                        source:folder
                                                   destination:@""
                                                         files:@[ name ]
                                                           tag:nullptr];
}

/// False when there is no such item.
bool identify(const FastString& path, RecycleBinReceipt& receipt) {
    struct stat item {};
    if (lstat(path.toStdString().c_str(), &item) != 0)
        return false;
    receipt.device = item.st_dev;
    receipt.inode = item.st_ino;
    return true;
}

NSURL* urlOf(const FastString& path) {
    return [NSURL fileURLWithPath:[NSString fromUTF8String:path]];
}

FastString descriptionOf(NSError* error) {
    return [[error localizedDescription] toUTF8String];
}

RecycleBinResult failed(const RecycleBinReceipt& receipt, const char* error) {
    return {false, receipt, FastString(error)};
}

RecycleBinResult recycleWithReceipt(const FastString& path) {
    RecycleBinResult result;
    result.receipt.originalPath = path;
    if (nameOfItem(path).empty() || !identify(path, result.receipt))
        return failed(result.receipt, "there is no such file or folder");
    NSURL* trashed = nil;
    NSError* error = nil;
    result.done = [[NSFileManager defaultManager] trashItemAtURL:urlOf(path)
                                                resultingItemURL:&trashed
                                                           error:&error];
    if (result.done)
        result.receipt.trashedPath = [[trashed path] toUTF8String];
    else
        result.error = descriptionOf(error);
    return result;
}

}  // namespace

bool moveToRecycleBin(const FastString& path, bool, bool, void*) {
    const ScopedARPool pool;
    const FastString name = nameOfItem(path);
    if (name.empty())
        return false;
    return recycle([NSString fromUTF8String:filesystem::parentPath(path)],
                   [NSString fromUTF8String:name]);
}

bool moveToRecycleBin(const std::vector<FastString>& paths, bool first, bool second,
                      void* pointer) {
    bool all = true;
    for (const FastString& path : paths)
        all = moveToRecycleBin(path, first, second, pointer) && all;
    return all;
}

bool moveToRecycleBin(const std::vector<FastString>& paths,
                      std::vector<RecycleBinResult>& results) {
    const ScopedARPool pool;
    bool all = true;
    results.clear();
    for (const FastString& path : paths) {
        results.push_back(recycleWithReceipt(path));
        all = results.back().done && all;
    }
    return all;
}

RecycleBinResult restoreFromRecycleBin(const RecycleBinReceipt& receipt) {
    const ScopedARPool pool;
    RecycleBinReceipt present;
    if (!identify(receipt.trashedPath, present))
        return failed(receipt, "the item has left the trash");
    if (present.device != receipt.device || present.inode != receipt.inode)
        return failed(receipt, "another item has its name in the trash");
    NSError* error = nil;
    RecycleBinResult result{false, receipt, {}};
    result.done =
        [[NSFileManager defaultManager] restoreTrashedItemAtURL:urlOf(receipt.trashedPath)
                                                          toURL:urlOf(receipt.originalPath)
                                                          error:&error];
    if (!result.done)
        result.error = descriptionOf(error);
    return result;
}

}  // namespace tav::ula
