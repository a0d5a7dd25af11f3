// SPDX-License-Identifier: MIT
// Volumes that /Volumes shows by a link. Where the platform mounts, these links stand for it, so
// that paths below them are as good as resolved.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace coreservices {

inline constexpr const char* kVolumesFolder = "/Volumes";

// Whether the path is an entry right in /Volumes that links to where a volume is mounted. The link
// to "/" is not meant: the start-up disk has its own form.
__attribute__((visibility("default"))) bool isVolumeLink(std::string_view path);

// Where the links of /Volumes lead at the time when the object is made.
class VolumeLinks {
public:
    VolumeLinks();

    // The path, which has no symbolic links, below the link of the volume that it lies on, or as it
    // is. Volumes that the path does not lie on are not asked anything.
    std::string name(const std::string& path) const;

private:
    std::vector<std::pair<std::string, std::string>> _links;  // name and target
};

// The path without symbolic links, except that what lies on a volume is named by the volume's link
// in /Volumes. Fails: an empty text where nothing lies.
__attribute__((visibility("default"))) std::string resolvedPath(const std::string& path);

}  // namespace coreservices
