// SPDX-License-Identifier: MIT
#include "ula/foundation/filesystem/HiddenName.h"

#include <climits>
#include <functional>
#include <string_view>

namespace tav::filesystem {

std::string hiddenName(const std::string& leaf, const char* purpose) {
    constexpr std::size_t kRoomForNumbers = 40;
    const std::string suffix = std::string(".ula-") + purpose;
    std::string name = leaf;
    if (1 + name.size() + suffix.size() + kRoomForNumbers > NAME_MAX) {
        const std::size_t hash = std::hash<std::string_view>()(leaf);
        name = name.substr(0, 160) + "." + std::to_string(hash);
    }
    return "." + name + suffix;
}

}  // namespace tav::filesystem
