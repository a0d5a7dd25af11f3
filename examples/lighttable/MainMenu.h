// SPDX-License-Identifier: MIT
#pragma once

#import <AppKit/AppKit.h>

namespace lighttable {

/// The application's menus, whose commands go to the delegate.
NSMenu* makeMainMenu();

}  // namespace lighttable
