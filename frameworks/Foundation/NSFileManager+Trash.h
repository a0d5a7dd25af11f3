// SPDX-License-Identifier: MIT
// Moving items to the user's trash and back, which GNUstep's file manager does not offer.
#pragma once

#import <Foundation/Foundation.h>

/// The platform's codes of NSCocoaErrorDomain that GNUstep does not name.
enum {
    NSFileWriteVolumeReadOnlyError = 642,
    NSFeatureUnsupportedError = 3328,
};

/// Errors are in NSCocoaErrorDomain, with a description in English that says why and, where a call
/// of the system failed, its error below. What has no trash, or is one, is
/// NSFeatureUnsupportedError.
/// Thread: any.
@interface NSFileManager (ULATrash)

/// The platform's method: moves the item to the trash of its file system and gives where it is
/// now; nil when its path is no text. Symbolic links go themselves.
/// Fails: NO, with the item where it was.
- (BOOL)trashItemAtURL:(NSURL*)url resultingItemURL:(NSURL**)resultingURL error:(NSError**)error;

/// Ours: a text that tells the item from every other that takes its name later. It stays the same
/// when the item is moved on its disk and when the disk is mounted again.
/// Fails: nil where there is no such item.
- (NSString*)identityOfItemAtURL:(NSURL*)url;

/// Ours: where the items are now that were trashed from a place, the last one trashed first,
/// whoever trashed them. URLs; empty when there are none.
- (NSArray*)trashedItemURLsOfURL:(NSURL*)url;

/// Ours: puts an item of the trash back where it was, making the folders that have gone since. What
/// has taken its place stays, and so does an item of another identity.
/// Fails: NO, with the item in the trash as it was.
- (BOOL)restoreTrashedItemAtURL:(NSURL*)trashedURL
                       identity:(NSString*)identity
                          toURL:(NSURL*)url
                          error:(NSError**)error;

@end
