// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tav::test {

/// A folder that is gone, with all in it, when the object is.
class TemporaryFolder {
public:
    explicit TemporaryFolder(const std::filesystem::path& parent = {});
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return _path; }
    std::string operator/(const std::string& name) const { return (_path / name).string(); }
    /// The names in it, sorted, hidden ones too.
    std::vector<std::string> names() const;

private:
    std::filesystem::path _path;
};

void writeFile(const std::string& path, std::string_view bytes);
/// By a single write, which is a single change for whoever watches the file.
void appendToFile(const std::string& path, std::string_view bytes);
/// Fails the test when the file cannot be read.
std::string readFile(const std::string& path);

}  // namespace tav::test
