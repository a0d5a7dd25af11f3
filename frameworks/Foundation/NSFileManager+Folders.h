// SPDX-License-Identifier: MIT
#pragma once

#import <Foundation/Foundation.h>

@interface NSFileManager (ULAFolders)

/// Of NSUserDomainMask, one URL each: NSDocumentDirectory, NSMoviesDirectory, NSMusicDirectory and
/// NSPicturesDirectory as the desktop has them (user-dirs), else by their English names in the home
/// folder; NSApplicationSupportDirectory, the folder for the data of programs. None of them need
/// exist. Empty for all else.
- (NSArray*)URLsForDirectory:(NSSearchPathDirectory)directory
                   inDomains:(NSSearchPathDomainMask)domains;

@end
