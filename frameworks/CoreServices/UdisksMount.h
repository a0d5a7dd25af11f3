// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>

namespace coreservices {

// Has udisks mount the file system that has this label, where it mounts such ones. True when it is
// mounted. Fails: false, without udisks, without such a disk, without permission; not logged.
bool udisksMount(const std::string& label, std::chrono::milliseconds patience);

}  // namespace coreservices
