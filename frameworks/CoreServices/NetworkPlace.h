// SPDX-License-Identifier: MIT
#pragma once

#include "CoreServices/MountInfo.h"

#include <string>
#include <string_view>
#include <vector>

namespace coreservices {

// The path under which the kernel has the place "smb://server/share/folder" mounted, or empty. By
// what the mounts say of themselves: cifs, nfs, sshfs and davfs.
std::string mountedPathOf(std::string_view url, const std::vector<Mount>& mounts);

// "server" of a URL, in lower case, without user and port; or empty.
std::string serverOf(std::string_view url);

}  // namespace coreservices
