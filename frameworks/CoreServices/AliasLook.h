// SPDX-License-Identifier: MIT
#pragma once

#include "CoreServices/AliasFile.h"

#include <optional>
#include <string>
#include <sys/types.h>

namespace coreservices {

// One place on the way of an alias, as it was found.
struct AliasLook {
    int error = 0;     // errno, when nothing could be seen
    std::string path;  // absolute, without "..", a link in the last place not followed
    mode_t mode = 0;
    bool isMountRoot = false;
    uint64_t mountId = 0;
    std::string linkTarget;             // of symbolic links, absolute
    std::optional<AliasContent> alias;  // of alias files
};

// Asks the file system, which may take for ever.
AliasLook lookAt(const std::string& path);

}  // namespace coreservices
