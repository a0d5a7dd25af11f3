// SPDX-License-Identifier: MIT
#pragma once

#include "CoreFoundation/Descriptor.h"

#include <string>

namespace fsevents {

// Opens the folder that an absolute path leads to, be it longer than the kernel takes at once.
// Fails: none, with errno.
cf::Descriptor openFolderAt(const std::string& path, bool followsLast);

}  // namespace fsevents
