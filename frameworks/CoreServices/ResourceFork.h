// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace coreservices {

// The first resource of a type in a resource fork, or nothing.
std::optional<std::string_view> firstResource(std::string_view fork, uint32_t type);

// What a companion file ("._name", an AppleDouble file) keeps of another file.
struct CompanionContent {
    uint32_t finderType = 0;
    uint16_t finderFlags = 0;
    std::string_view resourceFork;
};

// Fails: nothing for bytes that are no companion file.
std::optional<CompanionContent> parseCompanion(std::string_view bytes);

}  // namespace coreservices
