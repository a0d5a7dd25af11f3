// SPDX-License-Identifier: MIT
#pragma once

#import <AppKit/AppKit.h>
#include <string>

namespace lighttable {

/// Draws a window, and a panel over its middle if there is one, into a PNG file. Their frames are
/// left out. Fails: false, when the file cannot be written.
bool saveWindowPicture(NSWindow* window, NSWindow* panel, const std::string& path);

}  // namespace lighttable
