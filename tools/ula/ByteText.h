// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace tav::tool {

/// "16.8 MB", in the units in which disks are sold and files are measured.
std::string decimalByteText(std::uint64_t bytes);
/// "15.6 GiB", in the units in which memory is made.
std::string binaryByteText(std::uint64_t bytes);

}  // namespace tav::tool
