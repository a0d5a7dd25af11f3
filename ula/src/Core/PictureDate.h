// SPDX-License-Identifier: MIT
#pragma once

#include "ula/ShootingDate.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tav::ula {

struct PictureDay {
    int year = 0;
    int month = 0;
    int day = 0;
};

/// When a picture was taken, from the first bytes of its file: of a JPEG's EXIF block, and of a
/// TIFF, as most cameras' raw files are. Whatever the bytes say, nothing outside them is read.
/// Fails: nothing where there is none.
std::optional<ShootingDate> pictureDate(std::string_view bytes);

/// The day of that date; of a file without one the day when it was last changed (local time).
PictureDay pictureDay(std::string_view bytes, std::int64_t modified);

/// The pattern with %Y, %m and %d filled in. What would lead out of the folder is left out.
std::string dateFolder(const std::string& pattern, const PictureDay& day);

}  // namespace tav::ula
