// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace tav::bench {

/// A folder gone at the end with all in it: below the present one and so on its disk, or elsewhere.
class ScratchFolder {
public:
    explicit ScratchFolder(const std::filesystem::path& place = ".")
        : _path((std::filesystem::canonical(place) / "ula-bench-XXXXXX").string()) {
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
    std::string operator/(const std::string& name) const { return _path + "/" + name; }

private:
    std::string _path;
};

}  // namespace tav::bench
