// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace coreservices {

struct SystemVersion {
    int32_t major = 0;
    int32_t minor = 0;
    int32_t bugFix = 0;

    bool operator==(const SystemVersion&) const = default;
};

/// "22.04" is 22, 4, 0; what follows the third number, or no longer is one, is left out.
/// Fails: nothing for a text that does not begin with a number.
std::optional<SystemVersion> parseSystemVersion(std::string_view text);

/// The release that the distribution says it is (VERSION_ID of os-release); of one that has no
/// releases, the kernel's. `root` is the folder that stands for "/".
/// Fails: nothing, not logged.
std::optional<SystemVersion> readSystemVersion(const std::string& root = "");

/// As the platform packs it. A version that has no room in it is later than all that have, so that
/// callers ask for the numbers one by one.
int32_t packedForm(const SystemVersion& version);

}  // namespace coreservices
