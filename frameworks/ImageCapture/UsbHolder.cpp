// SPDX-License-Identifier: MIT
#include "ImageCapture/UsbHolder.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
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

std::string nameOf(const fs::path& process) {
    std::ifstream file(process / "comm");
    std::string name;
    std::getline(file, name);
    return name.empty() ? "a program" : "\"" + name + "\"";
}

std::string holder(const std::string& device, const std::string& processes) {
    std::error_code error;
    for (fs::directory_iterator entry(processes, error), end; !error && entry != end;
         entry.increment(error)) {
        std::string number = entry->path().filename().string();
        if (isNumber(number) && number != std::to_string(getpid()) &&
            hasOpen(entry->path(), device))
            return nameOf(entry->path()) + " (process " + number + ")";
    }
    return {};
}

std::string cureFor(const std::string& holder) {
    if (holder.find("gvfs") != std::string::npos)
        return "eject the camera in the file manager, or run: gio mount -s gphoto2";
    return "end that program, then try again";
}

}  // namespace

std::string usbAdvice(const std::string& place, const std::string& processes,
                      const std::string& devices) {
    std::string device = devices + "/" + place;
    std::replace(device.end() - static_cast<std::ptrdiff_t>(place.size()), device.end(), ',', '/');
    if (access(device.c_str(), F_OK) != 0)
        return "; it is no longer connected";
    if (std::string found = holder(device, processes); !found.empty())
        return "; " + found + " has it: " + cureFor(found);
    if (access(device.c_str(), R_OK | W_OK) != 0)
        return "; you may not use " + device +
               ": install Debian's libgphoto2-6 for its device rules and plug the camera in again";
    return {};
}

}  // namespace imagecapture
