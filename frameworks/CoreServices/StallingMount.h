// SPDX-License-Identifier: MIT
#pragma once

#include "CoreServices/MountInfo.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace coreservices {

// The first mount on the way along an absolute path whose answers come over a network or from
// another process, and may never come. Links on the way are followed, without asking such a mount.
std::optional<std::string> stallingMountOn(const std::string& path,
                                           const std::vector<Mount>& mounts);

// Whether a server answers for file systems of this type, or the host of a virtual machine.
bool isNetworkType(std::string_view type);

// Whether asking a file system of this type may take for ever.
__attribute__((visibility("default"))) bool mayStall(const Mount& mount);

}  // namespace coreservices
