// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/CommandError.h"
#include "ula/ImportSession.h"

#include <string>
#include <vector>

namespace tav::tool {

struct CameraImportOptions {
    std::string folder;
    std::vector<std::string> names;  ///< empty: all
    ula::ImportOptions options;
    bool asJson = false;
};

/// Brings the files of a device over, with a bar while it lasts and a summary at the end. Ctrl-C
/// ends it. Fails: throws `CommandError`.
ExitCode importFrom(const ula::ImportDevice& device, const CameraImportOptions& options);

}  // namespace tav::tool
