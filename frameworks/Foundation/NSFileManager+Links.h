// SPDX-License-Identifier: MIT
#pragma once

#import <Foundation/NSError.h>
#import <Foundation/NSFileManager.h>

@interface NSFileManager (ULALinks)

/// What a symbolic link says, which may be a path from the link's folder. Fails: nil, with an error
/// of NSCocoaErrorDomain: NSFileReadNoSuchFileError, NSFileReadNoPermissionError,
/// NSFileReadUnknownError for what is no link.
- (NSString*)destinationOfSymbolicLinkAtPath:(NSString*)path error:(NSError**)error;

@end
