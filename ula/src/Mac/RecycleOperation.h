// SPDX-License-Identifier: MIT
#pragma once

#import <AppKit/AppKit.h>

namespace tav::ula {

/// Has the workspace move an item to the trash, by its folder and the name in it.
/// Fails: false, also without a name, as for bytes that are no text.
inline bool recycle(NSString* folder, NSString* name) {
    if (folder == nil || name == nil)
        return false;
    return [[NSWorkspace sharedWorkspace] performFileOperation:NSWorkspaceRecycleOperation
                                                        source:folder
                                                   destination:@""
                                                         files:@[ name ]
                                                           tag:nullptr];
}

}  // namespace tav::ula
