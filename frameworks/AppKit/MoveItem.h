// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace appkit {

// A name in an open folder.
struct Place {
    int folder;
    std::string name;
};

// Renames without ever replacing anything.
// Fails: errno, EEXIST when the new name is taken, EXDEV across mounts; 0 when done.
int moveWithoutReplacing(const Place& from, const Place& to);

// The way round for file systems whose rename cannot refuse to replace: the new name is taken with
// an empty item of our own, and that one is replaced.
int moveOverPlaceholder(const Place& from, const Place& to);

}  // namespace appkit
