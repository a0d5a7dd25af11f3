// SPDX-License-Identifier: MIT
#include "tools/ula/AbsolutePath.h"

#include "tools/ula/CommandError.h"

#include <filesystem>

namespace tav::tool {

std::string absolutePath(const std::string& path) {
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(path, error);
    if (error)
        throw CommandError{ExitCannotRead, path + ": " + error.message()};
    return absolute.string();
}

}  // namespace tav::tool
