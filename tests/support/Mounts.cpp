// SPDX-License-Identifier: MIT
#include "tests/support/Mounts.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sched.h>
#include <sstream>
#include <stdexcept>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tav::test {

namespace fs = std::filesystem;

namespace {

void require(bool done, const std::string& what) {
    if (!done)
        throw std::runtime_error(what + ": " + std::strerror(errno));
}

/// Without a shell: names of mounts have every character there is.
void run(const std::vector<std::string>& words) {
    const pid_t process = fork();
    if (process == 0) {
        std::vector<char*> arguments;
        for (const std::string& word : words)
            arguments.push_back(const_cast<char*>(word.c_str()));
        arguments.push_back(nullptr);
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    int status = -1;
    waitpid(process, &status, 0);
    if (status != 0)
        throw std::runtime_error(words[0] + " fails; are you root?");
}

/// What the kernel says is mounted on the point last.
std::string sourceOf(const std::string& point) {
    std::ifstream table("/proc/self/mounts");
    std::string line, found;
    while (std::getline(table, line)) {
        std::istringstream words(line);
        std::string source, where;
        words >> source >> where;
        std::string plain;
        for (std::size_t i = 0; i < where.size(); ++i) {
            const bool isEscape = where[i] == '\\' && i + 3 < where.size();
            plain += isEscape ? static_cast<char>(std::stoi(where.substr(i + 1, 3), nullptr, 8))
                              : where[i];
            i += isEscape ? 3 : 0;
        }
        if (plain == point)
            found = source;
    }
    return found;
}

}  // namespace

std::string isolateMounts() {
    try {
        fs::create_directories("/Volumes");
        require(unshare(CLONE_NEWNS) == 0, "no mounts of one's own");
        require(mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "not private");
        require(mount("volumes", "/Volumes", "tmpfs", 0, nullptr) == 0, "no /Volumes");
        fs::create_symlink("/", "/Volumes/Linux");
        return {};
    } catch (const std::exception& error) {
        return error.what();
    }
}

Mounted::Mounted(const std::string& point) : _point(point) {
    if (!fs::exists(point))
        fs::create_directories(point);
}

Mounted::~Mounted() {
    unmount();
}

void Mounted::unmount() {
    if (_isMounted && umount2(_point.c_str(), MNT_DETACH) != 0)
        std::fprintf(stderr, "%s is still mounted\n", _point.c_str());
    _isMounted = false;
}

MountedImage::MountedImage(const std::string& point, const std::string& imageFolder,
                           const std::string& label, const std::string& options)
    : Mounted(point) {
    static int number = 0;
    _image = imageFolder + "/image" + std::to_string(++number);
    run({"truncate", "-s", "4M", _image});
    run({"mkfs.ext4", "-q", "-L", label, _image});
    run({"mount", "-o", options, _image, point});
    _device = sourceOf(point);
}

MountedMemory::MountedMemory(const std::string& point, const std::string& source) : Mounted(point) {
    require(mount(source.c_str(), point.c_str(), "tmpfs", 0, "size=1m") == 0, "no memory");
}

BoundFolder::BoundFolder(const std::string& folder, const std::string& point) : Mounted(point) {
    require(mount(folder.c_str(), point.c_str(), nullptr, MS_BIND, nullptr) == 0, "not bound");
}

DeadShare::DeadShare(const std::string& point, const std::string& source)
    : Mounted(point), _connection(open("/dev/fuse", O_RDWR | O_CLOEXEC)) {
    const std::string options =
        "fd=" + std::to_string(_connection) + ",rootmode=40000,user_id=0,group_id=0";
    require(mount(source.c_str(), point.c_str(), "fuse.sshfs", 0, options.c_str()) == 0,
            "no share");
}

DeadShare::~DeadShare() {
    die();
}

void DeadShare::die() {
    // Whoever still waits gets an error, too.
    if (_connection >= 0)
        close(std::exchange(_connection, -1));
}

}  // namespace tav::test
