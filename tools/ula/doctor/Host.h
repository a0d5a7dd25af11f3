// SPDX-License-Identifier: MIT
#pragma once

#include <ctime>
#include <functional>
#include <map>
#include <string>

namespace tav::tool::doctor {

enum class Synchronisation { Yes, No, Unknown };

/// What the checks look at. Tests put some of their own in the place of the system's.
struct Host {
    static Host ofProcess();

    /// Empty when it is not set.
    std::string variable(const std::string& name) const;

    /// What root calls this program: its path, unless root's shell finds it by its name.
    std::string ownCommand() const;

    std::map<std::string, std::string> environment;
    std::string displaySockets = "/tmp/.X11-unix";
    std::string inotifyLimits = "/proc/sys/fs/inotify";
    std::string processes = "/proc";
    std::string program = "/proc/self/exe";
    std::string services = "/run/systemd/system";  ///< there where systemd runs
    std::string supportedLocales = "/usr/share/i18n/SUPPORTED";
    std::string usbDevices = "/sys/bus/usb/devices";
    std::string usbNodes = "/dev/bus/usb";
    std::string volumes = "/Volumes";
    /// The user's trash folder, which need not exist. Asks the file systems on the way.
    std::function<std::string()> homeTrash;
    std::function<std::time_t()> now;
    std::function<Synchronisation()> synchronisation;
};

/// The name of the user, or the number for one without.
std::string userName();
/// The command as one for the superuser, who need not have sudo.
std::string asRoot(const std::string& command);

}  // namespace tav::tool::doctor
