// SPDX-License-Identifier: MIT
#pragma once

#include "ula/FileProperties.h"

#include <CoreServices/FolderListing.h>
#include <string>

namespace tav::ula {

/// The children of a folder one by one, in the order in which the platform lists them.
/// Thread: one.
class FolderChildren {
public:
    /// Of the folder that the item leads to; none of what leads to no folder. With
    /// `visibleFoldersOnly` only children that can be looked into and are not hidden.
    FolderChildren(const FileProperties& item, bool visibleFoldersOnly);

    /// False behind the last child.
    bool next(FileProperties& child);
    /// Whether there is one more, whatever it is.
    bool skip();

private:
    FileProperties examine(const coreservices::FolderEntry& entry);
    bool isKept(const FileProperties& child) const;

    const std::string _folder;
    const bool _visibleFoldersOnly;
    std::string _startupVolume;
    coreservices::FolderListing _listing;
};

}  // namespace tav::ula
