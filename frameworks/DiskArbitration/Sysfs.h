// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace diskarbitration {

// The first line of a file of sysfs, without blanks around it; empty when there is none.
std::string attribute(const std::string& path);
uint64_t numberAttribute(const std::string& path);
bool flagAttribute(const std::string& path);

// Sorted; empty where there is no such folder.
std::vector<std::string> namesIn(const std::string& folder);

// Where the path leads with every link followed; empty where nothing lies.
std::string realPath(const std::string& path);

// Whether a file or folder lies there.
bool exists(const std::string& path);

}  // namespace diskarbitration
