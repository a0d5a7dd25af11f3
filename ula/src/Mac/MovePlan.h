// SPDX-License-Identifier: MIT
#pragma once

#import <Foundation/Foundation.h>

namespace tav::ula {

/// From where to where an application would move, and what that takes. The objects are
/// autoreleased.
struct MovePlan {
    NSString* source = nil;
    bool isSourceWritable = false;
    bool isSourceOnVolume = false;
    NSString* destination = nil;  // nil where there is no Applications folder
    bool isHomeFolder = false;    // the user's own Applications folder
    bool needsAuthorization = false;

    /// On a disk image that cannot be written to: nothing of it can be thrown away.
    bool isFromReadOnlyImage() const { return isSourceOnVolume && !isSourceWritable; }
};

MovePlan makeMovePlan(NSString* source);

/// Whether a bundle lies in one of the system's Applications folders, or in any folder of the name.
bool isInApplicationsFolder(NSString* bundle);
bool isInDownloadsFolder(NSString* bundle);

}  // namespace tav::ula
