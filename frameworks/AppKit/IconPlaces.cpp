// SPDX-License-Identifier: MIT
#include "AppKit/IconTheme.h"
#include "AppKit/KeyFile.h"

#include "CoreFoundation/EnvironmentVariable.h"

#include <cstdlib>

namespace appkit {

namespace {

// The first settings file that names a theme.
std::string userTheme(const std::string& settings) {
    struct {
        const char* file;
        const char* group;
        const char* key;
    } const places[] = {{"/gtk-4.0/settings.ini", "Settings", "gtk-icon-theme-name"},
                        {"/gtk-3.0/settings.ini", "Settings", "gtk-icon-theme-name"},
                        {"/kdeglobals", "Icons", "Theme"}};
    for (const std::string& folder : {settings, std::string("/etc")})
        for (const auto& place : places) {
            KeyFile file;
            if (!file.read(folder + place.file))
                continue;
            std::string theme = file.text(place.group, place.key);
            if (!theme.empty())
                return theme;
        }
    return {};
}

}  // namespace

IconPlaces IconPlaces::ofProcess() {
    std::string home = cf::environmentVariable("HOME", "/");
    IconPlaces places;
    places.folders.push_back(home + "/.icons");
    places.folders.push_back(cf::environmentVariable("XDG_DATA_HOME", home + "/.local/share") +
                             "/icons");
    std::string data =
        cf::environmentVariable("XDG_DATA_DIRS", "/usr/local/share:/usr/share") + ":";
    for (size_t begin = 0, end; (end = data.find(':', begin)) != std::string::npos; begin = end + 1)
        if (end > begin)
            places.folders.push_back(data.substr(begin, end - begin) + "/icons");
    places.theme = userTheme(cf::environmentVariable("XDG_CONFIG_HOME", home + "/.config"));
    return places;
}

}  // namespace appkit
