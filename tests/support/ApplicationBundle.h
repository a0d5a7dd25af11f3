// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <string>

namespace tav::test {

/// A bundle around the tests' own application.
class ApplicationBundle {
public:
    ApplicationBundle(const std::string& folder, const std::string& name,
                      const std::string& identifier)
        : _path(folder + "/" + name + ".app"), _program(_path + "/Contents/MacOS/" + name) {
        namespace fs = std::filesystem;
        fs::create_directories(_path + "/Contents/MacOS");
        fs::copy_file(ULA_APPLICATION_PROGRAM, _program);
        writeFile(_path + "/Contents/Info.plist",
                  "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>"
                  "<key>CFBundleExecutable</key><string>" +
                      name + "</string><key>CFBundleName</key><string>" + name +
                      "</string><key>CFBundleIdentifier</key><string>" + identifier +
                      "</string></dict></plist>");
    }

    const std::string& path() const { return _path; }
    const std::string& program() const { return _program; }

private:
    std::string _path;
    std::string _program;
};

}  // namespace tav::test
