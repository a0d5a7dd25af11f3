// SPDX-License-Identifier: MIT
#include "ImageCapture/UsbHolder.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

namespace imagecapture {

namespace fs = std::filesystem;

namespace {

bool isNumber(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

bool hasOpen(const fs::path& process, const std::string& device) {
    std::error_code error;
    for (fs::directory_iterator entry(process / "fd", error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code ignored;
        if (fs::read_symlink(entry->path(), ignored) == device)
            return true;
    }
    return false;
}

struct Holder {
    std::string process = {};  // its number; empty where nobody has the device
    std::string name = {};
};

std::string nameOf(const fs::path& process) {
    std::ifstream file(process / "comm");
    std::string name;
    std::getline(file, name);
    return name.empty() ? "a program" : "\"" + name + "\"";
}

Holder holderOf(const std::string& device, const std::string& processes) {
    std::error_code error;
    for (fs::directory_iterator entry(processes, error), end; !error && entry != end;
         entry.increment(error)) {
        std::string number = entry->path().filename().string();
        if (isNumber(number) && number != std::to_string(getpid()) &&
            hasOpen(entry->path(), device))
            return {number, nameOf(entry->path())};
    }
    return {};
}

std::string cureFor(const Holder& holder) {
    if (holder.name.find("gvfs") != std::string::npos)
        return "eject the camera in the file manager, or run: gio mount -s gphoto2";
    return "close that program, or run: kill " + holder.process;
}

std::string groupName(gid_t number) {
    group entry{};
    group* found = nullptr;
    std::array<char, 4096> text;
    if (getgrgid_r(number, &entry, text.data(), text.size(), &found) != 0 || found == nullptr)
        return {};
    return found->gr_name;
}

// The device rules of Debian's libgphoto2-6 give cameras to a group.
std::string cureForRights(const std::string& device) {
    struct stat facts {};
    constexpr mode_t kReadAndWrite = S_IRGRP | S_IWGRP;
    const bool hasGroup = stat(device.c_str(), &facts) == 0 && facts.st_gid != 0 &&
                          (facts.st_mode & kReadAndWrite) == kReadAndWrite;
    const std::string group = hasGroup ? groupName(facts.st_gid) : "";
    if (!group.empty())
        return "sudo adduser \"$USER\" " + group + "  # then log in again";
    return "install Debian's libgphoto2-6 for its device rules and plug the camera in again";
}

}  // namespace

UsbObstacle usbObstacle(const std::string& place, const std::string& processes,
                        const std::string& devices) {
    using Obstacle = UsbObstacle::Kind;
    std::string device = devices + "/" + place;
    std::replace(device.end() - static_cast<std::ptrdiff_t>(place.size()), device.end(), ',', '/');
    if (access(device.c_str(), F_OK) != 0)
        return {Obstacle::Gone, "it is no longer connected"};
    if (const Holder holder = holderOf(device, processes); !holder.process.empty())
        return {Obstacle::Held, holder.name + " (process " + holder.process + ") has it",
                cureFor(holder)};
    if (access(device.c_str(), R_OK | W_OK) != 0)
        return {Obstacle::NotPermitted, "you may not use " + device, cureForRights(device)};
    return {};
}

std::string usbAdvice(const std::string& place, const std::string& processes,
                      const std::string& devices) {
    UsbObstacle obstacle = usbObstacle(place, processes, devices);
    if (obstacle.kind == UsbObstacle::Kind::None)
        return {};
    return "; " + obstacle.what + (obstacle.cure.empty() ? "" : ": " + obstacle.cure);
}

}  // namespace imagecapture
