// SPDX-License-Identifier: MIT
#include "ula/src/Core/SettingsTypeText.h"

#include <array>

namespace tav::ula {

namespace {

/// By the type's number.
constexpr std::array<std::string_view, 6> kTexts = {"",       "int",    "bool",
                                                    "double", "string", "string_array"};

}  // namespace

SettingsType typeOfText(std::string_view text) {
    for (std::uint32_t type = SETTINGSTYPE_INT; type < kTexts.size(); ++type)
        if (kTexts[type] == text)
            return static_cast<SettingsType>(type);
    return SETTINGSTYPE_INVALID;
}

std::string_view textOfType(SettingsType type) {
    return type < kTexts.size() ? kTexts[type] : std::string_view();
}

}  // namespace tav::ula
