// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>

namespace coreservices {

// Has udisks mount the file system that has this label, unless it is mounted, and gives where it
// is. Fails: empty, without udisks, without such a disk, without permission; not logged.
std::string udisksMount(const std::string& label, std::chrono::milliseconds patience);

}  // namespace coreservices
