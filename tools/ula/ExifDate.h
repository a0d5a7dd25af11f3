// SPDX-License-Identifier: MIT
#pragma once

#include "ula/ShootingDate.h"

#include <optional>
#include <string>

namespace tav::tool {

struct ExifDate {
    std::optional<ula::ShootingDate> date;
    std::string text;  ///< as the camera wrote it; empty when it wrote none
    int error = 0;     ///< errno where the file cannot be read, else 0
};

/// When the picture was taken, from the EXIF data of a JPEG, and of a TIFF whose directories stand
/// in its first 64 KB, as those of most cameras' raw files do. Only regular files are read, and
/// those as far as it takes; others have no date.
ExifDate readExifDate(const std::string& path);

}  // namespace tav::tool
