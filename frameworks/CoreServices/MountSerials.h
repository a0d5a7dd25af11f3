// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>

namespace coreservices {

// The kernel gives the number of a mount that has gone to the next one. These it never gives again:
// by `Mount::id`, for all mounts of this process. No file system is asked.
// Fails: empty where the kernel has none (before Linux 6.8), not logged.
// Thread: any.
__attribute__((visibility("default"))) std::map<uint64_t, uint64_t> mountSerials();

}  // namespace coreservices
