// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <ula/FileProperties.h>
#include <vector>

namespace lighttable {

enum class FolderKind { Heading, Place, Drive, Folder };

/// A line of the browser of folders, with the lines below it once it has been opened.
/// Thread: main.
struct FolderNode {
    std::uint64_t id =
        0;  ///< an answer that comes later finds its node by it, if it is still there
    FolderKind kind = FolderKind::Folder;
    std::string title;
    std::string path;  ///< empty of a heading
    int depth = 0;
    bool isExpandable = false;
    bool isExpanded = false;
    std::shared_ptr<const tav::ula::FileIconBitmap> icon;
    std::vector<std::unique_ptr<FolderNode>> children;
};

}  // namespace lighttable
