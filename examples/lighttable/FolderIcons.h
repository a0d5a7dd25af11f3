// SPDX-License-Identifier: MIT
#pragma once

#include "examples/lighttable/FolderNode.h"

#import <AppKit/AppKit.h>

namespace lighttable {

/// A drive's icon as the desktop has it; for folders a plain one. For flipped views.
void drawFolderIcon(const FolderNode& node, NSRect place);

}  // namespace lighttable
