// SPDX-License-Identifier: MIT
#include "CoreServices/AliasNames.h"

#include "CoreServices/AliasPlaces.h"
#include "CoreServices/Volumes.h"

#include <cstring>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

namespace coreservices {

HFSUniStr255 hfsName(std::string_view name) {
    HFSUniStr255 result;
    std::memset(&result, 0, sizeof result);
    constexpr size_t room = sizeof result.unicode / sizeof result.unicode[0];
    const char* bytes = name.data();
    auto size = static_cast<int32_t>(std::min(name.size(), size_t{4096}));
    for (int32_t i = 0; i < size;) {
        UChar32 code = 0;
        U8_NEXT_OR_FFFD(bytes, i, size, code);
        size_t needed = U16_LENGTH(code);
        if (result.length + needed > room)
            break;
        if (needed == 2)
            result.unicode[result.length++] = U16_LEAD(code);
        result.unicode[result.length++] =
            needed == 2 ? U16_TRAIL(code) : static_cast<UniChar>(code);
    }
    return result;
}

std::string volumeNameOf(const std::string& path) {
    std::vector<Mount> mounts = parseMountInfo(readMountInfo());
    std::vector<std::string> points = volumePoints(mounts, "/Volumes");
    std::string volume = "/";
    for (const std::string& point : points)
        if (path.compare(0, point.size(), point) == 0 && point.size() > volume.size() &&
            (path.size() == point.size() || path[point.size()] == '/'))
            volume = point;
    for (const VolumeEntry& entry : Volumes().list(mounts))
        if (entry.target == volume)
            return entry.name;
    return volume;
}

}  // namespace coreservices
