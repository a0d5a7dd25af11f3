// SPDX-License-Identifier: MIT
#include "Foundation/FileSystemSpace.h"

#include "CoreServices/Patience.h"

#include <sys/stat.h>
#include <sys/statvfs.h>

namespace foundation {

namespace {

std::optional<FileSystemSpace> spaceOf(const std::string& point) {
    struct statvfs system {};
    struct stat item {};
    if (statvfs(point.c_str(), &system) != 0 || stat(point.c_str(), &item) != 0)
        return std::nullopt;
    return FileSystemSpace{system.f_blocks * system.f_frsize, system.f_bavail * system.f_frsize,
                           system.f_files, system.f_ffree, item.st_dev};
}

}  // namespace

std::optional<FileSystemSpace> askForSpace(const std::string& point,
                                           std::chrono::milliseconds patience) {
    return coreservices::askPatiently<std::optional<FileSystemSpace>>(
               point, patience, [point] { return spaceOf(point); })
        .value_or(std::nullopt);
}

}  // namespace foundation
