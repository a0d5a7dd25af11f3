// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/ChildProcess.h"
#include "tests/support/Mounts.h"
#include "tests/support/TemporaryFolder.h"
#include "ula/Dir.h"

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace tav::ula {

/// Tests of a folder of their own; "Linux" is the start-up disk.
class FolderTest : public testing::Test {
protected:
    std::string path() const { return test::onStartupDisk(_folder.path()); }
    void folder(const std::string& name) const {
        std::filesystem::create_directories(_folder / name);
    }
    void file(const std::string& name, std::string_view bytes = "x") const {
        test::writeFile(_folder / name, bytes);
    }
    void link(const std::string& name, const std::string& target) const {
        std::filesystem::create_symlink(target, _folder / name);
    }

    void alias(const std::string& name, const std::string& target) const {
        file(name, "[Desktop Entry]\nType=Link\nURL=file://" + (_folder / target) + "\n");
    }

    test::TemporaryFolder _folder;
};

inline std::vector<std::string> namesOf(const std::vector<Dir*>& nodes) {
    std::vector<std::string> names;
    for (const Dir* node : nodes)
        names.push_back(node->name());
    return names;
}

/// What `ask` gives as the user "nobody".
inline std::string asNobody(const std::function<std::string()>& ask) {
    return test::runInChild([&] {
        if (setgid(65534) != 0 || setuid(65534) != 0)
            return std::string("still root");
        return ask();
    });
}

}  // namespace tav::ula
