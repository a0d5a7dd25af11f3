// SPDX-License-Identifier: MIT
#include "ula/RecycleBin.h"

#include "ula/ScopedARPool.h"
#include "ula/foundation/filesystem/FileSystem.h"
#include "ula/src/Mac/Bridge.h"
#include "ula/src/Mac/RecycleOperation.h"

#import <Foundation/NSFileManager+Trash.h>

namespace tav::ula {

namespace {

constexpr const char* kNoText = "its path is no text in UTF-8";

/// The item's name in its folder; empty when it is neither file nor folder.
FastString nameOfItem(const FastString& path) {
    if (filesystem::isRegularFile(path))
        return filesystem::leaf(path);
    if (filesystem::isDirectory(path))
        return filesystem::leaf(filesystem::folderName(path));
    return FastString();
}

/// Nil for what is no path: an empty text, or bytes that are no text.
NSURL* urlOf(const FastString& path) {
    NSString* const text = [NSString fromUTF8String:path];
    return [text length] == 0 ? nil : [NSURL fileURLWithPath:text];
}

FastString descriptionOf(NSError* error) {
    return fastTextOf([error localizedDescription]);
}

RecycleBinResult failed(const RecycleBinReceipt& receipt, const FastString& error) {
    return {false, receipt, error};
}

RecycleBinResult recycleWithReceipt(const FastString& path) {
    RecycleBinResult result;
    result.receipt.originalPath = path;
    if (nameOfItem(path).empty())
        return failed(result.receipt, "there is no such file or folder");
    NSURL* const original = urlOf(path);
    if (original == nil)
        return failed(result.receipt, kNoText);
    NSFileManager* const files = [NSFileManager defaultManager];
    NSURL* trashed = nil;
    NSError* error = nil;
    result.done = [files trashItemAtURL:original resultingItemURL:&trashed error:&error];
    if (!result.done)
        return failed(result.receipt, descriptionOf(error));
    result.receipt = {fastTextOf([original path]), fastTextOf([trashed path]),
                      fastTextOf([files identityOfItemAtURL:trashed])};
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

std::vector<RecycleBinReceipt> findInRecycleBin(const FastString& originalPath) {
    const ScopedARPool pool;
    std::vector<RecycleBinReceipt> receipts;
    NSURL* const original = urlOf(originalPath);
    if (original == nil)
        return receipts;
    NSFileManager* const files = [NSFileManager defaultManager];
    for (NSURL* trashed in [files trashedItemURLsOfURL:original])
        receipts.push_back({fastTextOf([original path]), fastTextOf([trashed path]),
                            fastTextOf([files identityOfItemAtURL:trashed])});
    return receipts;
}

RecycleBinResult restoreFromRecycleBin(const RecycleBinReceipt& receipt) {
    const ScopedARPool pool;
    NSURL* const trashed = urlOf(receipt.trashedPath);
    NSURL* const original = urlOf(receipt.originalPath);
    if (trashed == nil || original == nil)
        return failed(receipt, "the receipt tells of no item");
    NSFileManager* const files = [NSFileManager defaultManager];
    if ([files identityOfItemAtURL:trashed] == nil)
        return failed(receipt, "the item has left the trash");
    NSError* error = nil;
    const bool done = [files restoreTrashedItemAtURL:trashed
                                            identity:[NSString fromUTF8String:receipt.identity]
                                               toURL:original
                                               error:&error];
    return done ? RecycleBinResult{true, receipt, {}} : failed(receipt, descriptionOf(error));
}

}  // namespace tav::ula
