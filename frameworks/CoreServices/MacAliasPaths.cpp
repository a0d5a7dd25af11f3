// SPDX-License-Identifier: MIT
#include "CoreServices/MacAliasPaths.h"

#include <algorithm>
#include <glib.h>
#include <memory>

namespace coreservices {

namespace {

std::string normalized(const std::string& text, GNormalizeMode mode) {
    std::unique_ptr<char, decltype(&g_free)> form(
        g_utf8_normalize(text.data(), static_cast<gssize>(text.size()), mode), &g_free);
    return form ? form.get() : std::string();
}

void add(std::vector<std::string>& paths, const std::string& path) {
    if (!path.empty() && std::find(paths.begin(), paths.end(), path) == paths.end())
        paths.push_back(path);
}

// The platform's disks keep names decomposed; a driver or a copy may have composed them.
void addForms(std::vector<std::string>& paths, const std::string& path) {
    add(paths, path);
    add(paths, normalized(path, G_NORMALIZE_NFC));
    add(paths, normalized(path, G_NORMALIZE_NFD));
}

}  // namespace

std::vector<std::string> pathsOf(const MacAlias& alias, const std::string& ownVolume,
                                 const AliasPlaces& places) {
    std::string below;
    for (const std::string& name : alias.components)
        below += "/" + name;
    std::vector<std::string> paths;
    if (isPlainComponent(alias.volumeName)) {
        addForms(paths, places.volumesFolder + "/" + alias.volumeName + below);
        for (const std::string& folder : places.mediaFolders)
            addForms(paths, folder + "/" + alias.volumeName + below);
    }
    // Before this system's root: the start-up disk that is meant was the other system's, and the
    // alias most likely lies on it. An alias to a whole disk says nothing about the one it lies on.
    if (!below.empty())
        addForms(paths, ownVolume == "/" ? below : ownVolume + below);
    if (alias.onStartupVolume)
        addForms(paths, below.empty() ? "/" : below);
    return paths;
}

}  // namespace coreservices
