// SPDX-License-Identifier: MIT
#include "CoreServices/AliasNames.h"

#include "CoreServices/AliasPlaces.h"
#include "CoreServices/MountLookup.h"
#include "CoreServices/VolumeLinks.h"
#include "CoreServices/Volumes.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <unicode/ustring.h>

namespace coreservices {

HFSUniStr255 hfsName(std::string_view name) {
    HFSUniStr255 result;
    std::memset(&result, 0, sizeof result);
    // No character takes more units than it has bytes.
    std::u16string units(name.size(), u'\0');
    int32_t length = 0;
    UErrorCode error = U_ZERO_ERROR;
    auto size = static_cast<int32_t>(name.size());
    u_strFromUTF8WithSub(units.data(), size, &length, name.data(), size, 0xFFFD, nullptr, &error);
    if (U_FAILURE(error))
        return result;
    size_t count = std::min(static_cast<size_t>(length), std::size(result.unicode));
    if (count < static_cast<size_t>(length) && (units[count] & 0xFC00) == 0xDC00)
        --count;
    std::copy_n(units.begin(), count, result.unicode);
    result.length = static_cast<UInt16>(count);
    return result;
}

std::string volumeNameOf(const std::string& path) {
    const MountList mounts = currentMounts();
    std::vector<std::string> points = volumePoints(*mounts, kVolumesFolder);
    std::string volume = "/";
    for (const std::string& point : points)
        if (path.compare(0, point.size(), point) == 0 && point.size() > volume.size() &&
            (path.size() == point.size() || path[point.size()] == '/'))
            volume = point;
    for (const VolumeEntry& entry : Volumes().list(*mounts))
        if (entry.target == volume)
            return entry.name;
    return volume;
}

}  // namespace coreservices
