// SPDX-License-Identifier: MIT
#include "examples/lighttable/PictureFile.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

namespace lighttable {

bool isPictureName(const std::string& name) {
    static constexpr std::array<std::string_view, 6> endings = {".gif", ".jpeg", ".jpg",
                                                                ".png", ".tif",  ".tiff"};
    std::string lower = name;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return std::any_of(endings.begin(), endings.end(),
                       [&](std::string_view ending) { return lower.ends_with(ending); });
}

}  // namespace lighttable
