// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tav::filesystem {

/// What a file that is not in its place yet is for.
inline constexpr const char* kNewPurpose = "new-";

/// ".LEAF.ula-PURPOSE", with a hash in place of the end of a name that is too long for that. The
/// same begin for every save of a file, so that what a killed process left is found again.
std::string hiddenName(const std::string& leaf, const char* purpose);

}  // namespace tav::filesystem
