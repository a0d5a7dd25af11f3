// SPDX-License-Identifier: MIT
// The C library's listing of a folder, closed when nobody uses it any longer.
#pragma once

#include <dirent.h>
#include <memory>

namespace cf {

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};
using FolderStream = std::unique_ptr<DIR, CloseFolder>;

}  // namespace cf
