// SPDX-License-Identifier: MIT
#pragma once

#include "examples/lighttable/Thumbnail.h"

#include <string>

namespace lighttable {

/// Reads a picture and makes it smaller, so that its longer side is `side` pixels at the most, and
/// upright, as its camera says. Not with AppKit: GNUstep's decoders read beyond the end of damaged
/// files, and a light table is where those are met.
/// Thread: any. Fails: empty, for what cannot be read or would not fit into memory.
Thumbnail decodePicture(const std::string& path, int side);

}  // namespace lighttable
