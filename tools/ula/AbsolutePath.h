// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tav::tool {

/// The path from the root on; links are left as they are.
/// Fails: throws `CommandError` where it is relative and the working folder has gone.
std::string absolutePath(const std::string& path);

}  // namespace tav::tool
