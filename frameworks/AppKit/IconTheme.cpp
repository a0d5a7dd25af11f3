// SPDX-License-Identifier: MIT
#include "AppKit/IconTheme.h"

#include "AppKit/KeyFile.h"

#include <algorithm>
#include <climits>
#include <unistd.h>

namespace appkit {

namespace {

constexpr size_t kMostThemes = 32;

bool exists(const std::string& path) {
    return access(path.c_str(), R_OK) == 0;
}

// A name in a settings file must not lead out of the folders of themes.
bool isName(const std::string& name) {
    return !name.empty() && name[0] != '.' && name.find('/') == std::string::npos;
}

}  // namespace

int IconTheme::Sizes::distance(int pixels) const {
    return std::max({0, smallest - pixels, pixels - largest});
}

IconTheme::Sizes IconTheme::sizesOf(const KeyFile& index, const std::string& folder) {
    // Drawn for screens of twice the density: they have twice the pixels.
    int scale = index.number(folder, "Scale", 1);
    int size = index.number(folder, "Size", 0);
    std::string type = index.text(folder, "Type");
    if (type == "Fixed")
        return {size * scale, size * scale};
    if (type == "Scalable")
        return {index.number(folder, "MinSize", size) * scale,
                index.number(folder, "MaxSize", size) * scale};
    int around = index.number(folder, "Threshold", 2);
    return {(size - around) * scale, (size + around) * scale};
}

IconTheme::IconTheme(const IconPlaces& places) {
    add(places.theme, places);
    add("Adwaita", places);
    add("hicolor", places);
}

bool IconTheme::has(const std::string& name) const {
    return std::any_of(_themes.begin(), _themes.end(),
                       [&](const Theme& theme) { return theme.name == name; });
}

void IconTheme::add(const std::string& name, const IconPlaces& places) {
    if (!isName(name) || has(name) || _themes.size() >= kMostThemes)
        return;
    KeyFile index;
    for (const std::string& folder : places.folders)
        if (index.read(folder + "/" + name + "/index.theme"))
            break;
    Theme theme{name, {}};
    for (const std::string& folder : index.list("Icon Theme", "Directories")) {
        Sizes sizes = sizesOf(index, folder);
        for (const std::string& place : places.folders) {
            std::string path = place + "/" + name + "/" + folder;
            if (exists(path))
                theme.folders.push_back({path, sizes});
        }
    }
    _themes.push_back(std::move(theme));
    for (const std::string& parent : index.list("Icon Theme", "Inherits"))
        if (parent != "hicolor")
            add(parent, places);
}

std::string IconTheme::findIn(const Theme& theme, const std::string& name, int pixels) {
    std::string nearest;
    int least = INT_MAX;
    for (const Folder& folder : theme.folders) {
        int away = folder.sizes.distance(pixels);
        if (away >= least)
            continue;
        for (const char* ending : {".png", ".svg", ".xpm"}) {
            std::string file = folder.path + "/" + name + ending;
            if (!exists(file))
                continue;
            nearest = std::move(file);
            least = away;
            break;
        }
    }
    return nearest;
}

std::string IconTheme::find(const std::vector<std::string>& names, int pixels) const {
    for (const Theme& theme : _themes)
        for (const std::string& name : names) {
            std::string file = findIn(theme, name, pixels);
            if (!file.empty())
                return file;
        }
    return {};
}

}  // namespace appkit
