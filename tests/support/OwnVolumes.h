// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tav::test {

/// Gives the process a /Volumes of its own, gone with it, in which "Linux" leads to "/". What it
/// mounts from then on nobody else sees. Needs root; to be called before threads are made.
/// Fails: ends the program with a message.
void makeOwnVolumes();

/// The path in the form in which the library speaks of the start-up disk.
inline std::string onStartupDisk(const std::string& path) {
    return "/Volumes/Linux" + path;
}

/// A disk image of its own, mounted on a folder for as long as it lives.
class MountedImage {
public:
    /// `options` as those of mount(8), besides "loop". Fails: ends the program with a message.
    MountedImage(const std::string& image, const std::string& folder,
                 const std::string& options = "loop");
    ~MountedImage();
    MountedImage(const MountedImage&) = delete;
    MountedImage& operator=(const MountedImage&) = delete;

private:
    std::string _folder;
};

}  // namespace tav::test
