// SPDX-License-Identifier: MIT
#pragma once

#include "AppKit/Trash.h"

#include <filesystem>
#include <string>
#include <vector>

namespace trashtest {

// A folder of its own for a test, and the means to look into a trash.
class Sandbox {
public:
    Sandbox();
    Sandbox(const Sandbox&) = delete;
    Sandbox& operator=(const Sandbox&) = delete;
    ~Sandbox();

    const std::string& path() const { return _path; }
    std::string operator/(const std::string& name) const { return _path + "/" + name; }

    // Makes a file with the folders above it.
    std::string makeFile(const std::string& name, const std::string& content = "content") const;

    // The home trash is data/Trash in the sandbox; any file system may hold a trash.
    appkit::TrashPlaces places() const;

private:
    std::string _path;
};

// An ext4 file system of its own, mounted from an image. Needs root.
class MountedImage {
public:
    explicit MountedImage(const Sandbox& sandbox, const std::string& name = "disk");
    MountedImage(const MountedImage&) = delete;
    MountedImage& operator=(const MountedImage&) = delete;
    ~MountedImage();

    const std::string& path() const { return _path; }
    std::string operator/(const std::string& name) const { return _path + "/" + name; }

private:
    std::string _path;
};

std::string contentOf(const std::string& path);
void writeFile(const std::string& path, const std::string& content);
// Whether there is such a name, be it a link to nothing.
bool exists(const std::string& path);
std::vector<std::string> namesIn(const std::string& folder);

// Runs a program with the variables "NAME=value" added and gives what it printed.
std::string run(const std::string& command);

}  // namespace trashtest
