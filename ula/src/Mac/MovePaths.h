// SPDX-License-Identifier: MIT
#pragma once

#import <Foundation/Foundation.h>

namespace tav::ula {

/// Moves an item to the trash. Fails: false, logged.
bool trashPath(NSString* path);

/// The path with every symbolic link and alias along it resolved, autoreleased.
/// Fails: nil, for a path that is not absolute or leads nowhere; not logged.
NSString* resolvedPath(NSString* path);

}  // namespace tav::ula
