// SPDX-License-Identifier: MIT
#include "OwnVolumes.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sched.h>
#include <sys/mount.h>

namespace tav::test {

namespace {

void need(bool isDone, const char* what) {
    if (isDone)
        return;
    std::perror(what);
    std::exit(1);
}

void run(const std::string& command) {
    need(std::system(command.c_str()) == 0, command.c_str());
}

}  // namespace

void makeOwnVolumes() {
    std::error_code error;
    std::filesystem::create_directory("/Volumes", error);
    need(unshare(CLONE_NEWNS) == 0, "a mount name space of its own");
    need(mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "private mounts");
    need(mount("volumes", "/Volumes", "tmpfs", 0, nullptr) == 0, "a /Volumes of its own");
    std::filesystem::create_symlink("/", "/Volumes/Linux", error);
    need(!error, "/Volumes/Linux");
}

MountedImage::MountedImage(const std::string& image, const std::string& folder,
                           const std::string& options)
    : _folder(folder) {
    run("truncate -s 4M '" + image + "' && mkfs.ext4 -q '" + image + "' && mount -o " + options +
        " '" + image + "' '" + folder + "'");
}

MountedImage::~MountedImage() {
    umount2(_folder.c_str(), MNT_DETACH);
}

}  // namespace tav::test
