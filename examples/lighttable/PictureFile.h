// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace lighttable {

/// A picture's file as it was when its folder was listed: another size or date is another picture.
struct PictureFile {
    std::string path;
    std::string name;
    std::uint64_t size = 0;
    std::int64_t modified = 0;  ///< only to be compared

    bool operator==(const PictureFile&) const = default;
};

enum class FolderState {
    Listing,  ///< not known yet
    Listed,
    Missing,     ///< it has gone, or its disk has
    Unreadable,  ///< the user may not look into it, or its disk has errors
};

struct FolderContent {
    std::string folder;
    FolderState state = FolderState::Listing;
    std::vector<PictureFile> pictures;  ///< in the Finder's order
};

/// By its ending: whether it may be a picture that can be decoded.
bool isPictureName(const std::string& name);

}  // namespace lighttable
