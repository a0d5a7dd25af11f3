// SPDX-License-Identifier: MIT
// Moving items to the user's trash and back, which GNUstep's file manager does not offer.
#pragma once

#import <Foundation/Foundation.h>

@interface NSFileManager (ULATrash)

/// The platform's method: moves the item to the trash of its file system and gives where it is
/// now. Symbolic links go themselves.
/// Fails: NO with an error whose description says why, in English; the item is where it was.
/// Thread: any.
- (BOOL)trashItemAtURL:(NSURL*)url resultingItemURL:(NSURL**)resultingURL error:(NSError**)error;

/// Ours: puts an item of the trash back where it was, making the folders that have gone since. What
/// has taken its place stays.
/// Fails: as above; the item is in the trash as it was.
/// Thread: any.
- (BOOL)restoreTrashedItemAtURL:(NSURL*)trashedURL toURL:(NSURL*)url error:(NSError**)error;

@end
