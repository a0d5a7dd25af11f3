// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace tav::bench {

/// A folder below the present one, on its disk, gone at the end with all in it.
class ScratchFolder {
public:
    ScratchFolder() {
        _path = std::filesystem::absolute("scratch-XXXXXX").string();
        if (mkdtemp(_path.data()) == nullptr)
            std::abort();
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(_path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const char* path() const { return _path.c_str(); }

private:
    std::string _path;
};

}  // namespace tav::bench
