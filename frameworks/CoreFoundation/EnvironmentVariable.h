// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <string>

namespace cf {

// An empty variable counts as none, as in the standards of the desktops.
inline std::string environmentVariable(const char* name, const std::string& otherwise) {
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0' ? value : otherwise;
}

}  // namespace cf
