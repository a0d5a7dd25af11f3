// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <string>

namespace systemprofilertest {

/// A folder with the files in which a kernel describes a machine.
class FakeMachine {
public:
    std::string root() const { return _folder.path().string(); }
    void write(const std::string& name, const std::string& text) {
        const std::filesystem::path path = _folder.path() / name;
        std::filesystem::create_directories(path.parent_path());
        tav::test::writeFile(path.string(), text);
    }

private:
    tav::test::TemporaryFolder _folder;
};

}  // namespace systemprofilertest
