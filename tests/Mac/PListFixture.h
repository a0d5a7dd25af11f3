// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryFolder.h"
#include "ula/SettingsPList.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <memory>
#include <string>

namespace tav::ula {

/// Tests with a home folder of their own, and the lists of the application Viewer of Acme in it.
class PListFixture : public testing::Test {
protected:
    PListFixture() {
        setenv("HOME", home.path().c_str(), 1);
        std::filesystem::create_directories(folder);
    }

    static std::unique_ptr<SettingsPList> open() {
        return std::make_unique<SettingsPList>("Viewer", "Acme", true);
    }
    void writeList(std::string_view bytes) const { test::writeFile(path, bytes); }
    /// A list in XML with this in its root dictionary.
    void writeRoot(const std::string& inside) const { writeList(listOf(inside)); }
    static std::string listOf(const std::string& inside) {
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" +
               inside + "</dict></plist>\n";
    }
    static std::string groupOf(const std::string& inside) {
        return "<key>G</key><dict>" + inside + "</dict>";
    }
    std::vector<std::string> namesBeside() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    static constexpr const char* kName = "com.Acme.Viewer.plist";
    test::TemporaryFolder home;
    const std::string folder = home / "Library/Preferences";
    const std::string path = folder + "/" + kName;
};

}  // namespace tav::ula
