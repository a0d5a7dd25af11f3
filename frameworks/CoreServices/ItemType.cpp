// SPDX-License-Identifier: MIT
#include "CoreServices/ItemType.h"

#include "CoreServices/AliasFile.h"
#include "CoreServices/MountLookup.h"
#include "CoreServices/VolumeLinks.h"
#include "CoreServices/Volumes.h"

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <strings.h>
#include <sys/stat.h>

namespace coreservices {

namespace {

constexpr std::string_view kApplication = ".app";
constexpr std::string_view kPackages[] = {
    ".appex",      ".bundle", ".component", ".dsym",   ".framework", ".kext",
    ".mdimporter", ".mpkg",   ".pkg",       ".plugin", ".prefpane",  ".qlgenerator",
    ".rtfd",       ".saver",  ".service",   ".wdgt",   ".xpc",
};

// A name that is nothing but an extension has none.
bool hasExtension(std::string_view name, std::string_view extension) {
    return name.size() > extension.size() &&
           strncasecmp(name.data() + name.size() - extension.size(), extension.data(),
                       extension.size()) == 0;
}

bool isVolumePoint(const std::string& point) {
    if (point == "/")
        return true;
    const std::vector<std::string> points = volumePoints(*currentMounts(), kVolumesFolder);
    return std::find(points.begin(), points.end(), point) != points.end();
}

ItemType typeOfFolder(const std::string& path, const struct statx& item) {
    if (isMountRoot(item)) {
        const std::unique_ptr<char, decltype(&free)> point(realpath(path.c_str(), nullptr), free);
        if (point != nullptr && isVolumePoint(point.get()))
            return ItemType::Volume;
    }
    const std::string_view name = std::string_view(path).substr(path.rfind('/') + 1);
    if (isApplicationName(name))
        return ItemType::ApplicationBundle;
    return isPackageName(name) ? ItemType::Package : ItemType::Folder;
}

}  // namespace

bool isApplicationName(std::string_view name) {
    return hasExtension(name, kApplication);
}

bool isPackageName(std::string_view name) {
    return isApplicationName(name) ||
           std::any_of(std::begin(kPackages), std::end(kPackages),
                       [name](std::string_view package) { return hasExtension(name, package); });
}

std::optional<ItemType> itemType(const std::string& path) {
    struct statx item;
    if (statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT,
              STATX_TYPE | STATX_SIZE, &item) != 0)
        return std::nullopt;
    switch (item.stx_mode & S_IFMT) {
    case S_IFLNK:
        return isVolumeLink(path) ? ItemType::Volume : ItemType::SymbolicLink;
    case S_IFDIR:
        return typeOfFolder(path, item);
    case S_IFREG:
        break;
    default:
        return ItemType::Other;
    }
    const std::string_view name = std::string_view(path).substr(path.rfind('/') + 1);
    return mayBeAliasFile(name, item.stx_size) && isAliasFile(path) ? ItemType::AliasFile
                                                                    : ItemType::File;
}

}  // namespace coreservices
