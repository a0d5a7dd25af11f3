// SPDX-License-Identifier: MIT
#pragma once

#include "examples/lighttable/Thumbnail.h"

#import <AppKit/AppKit.h>

namespace lighttable {

/// Draws a thumbnail as large as the square allows, in its middle: a quiet card where it is not
/// there yet (null), one that says so where the picture cannot be read (empty).
/// For flipped views.
void drawThumbnail(const Thumbnail* thumbnail, NSRect square);

}  // namespace lighttable
