// SPDX-License-Identifier: MIT
#pragma once

#include "AppKit/MoveItem.h"

namespace appkit {

// Copies a file, link, folder tree or special file to a name that is free, with owner, permissions,
// times and extended attributes as far as the user and the file system allow. Hard links become
// files of their own.
// Fails: errno, and nothing is left at the new name; 0 when done.
int copyItem(const Place& from, const Place& to);

// Removes an item with all it holds, be it in folders of the user's that may not be changed;
// folders on other file systems mounted within it stop it. Fails: errno; 0 when done or when there
// was none.
int removeItem(const Place& place);

}  // namespace appkit
