// SPDX-License-Identifier: MIT
#pragma once

#import <AppKit/AppKit.h>

namespace lighttable {

/// A picture on a table, drawn: one bitmap, which lives through the copies that AppKit makes.
NSImage* makeApplicationIcon();

}  // namespace lighttable
