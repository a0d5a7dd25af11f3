// SPDX-License-Identifier: MIT
#include "AppKit/Trash.h"

#include <cstdlib>
#include <ctime>
#include <memory>
#include <pwd.h>
#include <unistd.h>

#include <gio/gunixmounts.h>

namespace appkit {

namespace {

// HOME, or where the password database says: a program started by the system may have none.
std::string homeFolder() {
    if (const char* home = std::getenv("HOME"); home != nullptr && home[0] == '/')
        return home;
    passwd entry{};
    passwd* found = nullptr;
    char text[4096];
    if (getpwuid_r(geteuid(), &entry, text, sizeof text, &found) == 0 && found != nullptr)
        return found->pw_dir;
    return {};
}

// Names without dots and links above the last folder that exists, as items' paths have them.
std::string withoutLinks(const std::string& path) {
    for (size_t end = path.size(); end != std::string::npos && end > 0;
         end = path.rfind('/', end - 1)) {
        std::unique_ptr<char, void (*)(void*)> real(realpath(path.substr(0, end).c_str(), nullptr),
                                                    std::free);
        if (real != nullptr)
            return real.get() + path.substr(end);
    }
    return path;
}

std::string homeTrashPath() {
    const char* data = std::getenv("XDG_DATA_HOME");
    if (data != nullptr && data[0] == '/')
        return withoutLinks(std::string(data) + "/Trash");
    std::string home = homeFolder();
    return home.empty() ? home : withoutLinks(home + "/.local/share/Trash");
}

bool isForUsers(const coreservices::Mount& mount) {
    GUnixMountEntry* entry = g_unix_mount_at(mount.point.c_str(), nullptr);
    if (entry == nullptr)
        return false;
    bool forUsers = g_unix_mount_is_system_internal(entry) == FALSE;
    g_unix_mount_free(entry);
    return forUsers;
}

}  // namespace

TrashPlaces TrashPlaces::ofProcess() {
    return {homeTrashPath(), geteuid(), isForUsers, [] { return std::time(nullptr); }};
}

}  // namespace appkit
