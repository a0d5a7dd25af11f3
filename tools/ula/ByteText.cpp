// SPDX-License-Identifier: MIT
#include "tools/ula/ByteText.h"

#include <array>
#include <cstddef>
#include <cstdio>

namespace tav::tool {

namespace {

using Units = std::array<const char*, 7>;

constexpr Units kDecimalUnits = {"bytes", "kB", "MB", "GB", "TB", "PB", "EB"};
constexpr Units kBinaryUnits = {"bytes", "KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};

std::string byteText(std::uint64_t bytes, double factor, const Units& units) {
    if (static_cast<double>(bytes) < factor)
        return std::to_string(bytes) + " " + units[0];
    auto value = static_cast<double>(bytes);
    std::size_t unit = 0;
    // What would be rounded up to the factor belongs to the next unit.
    for (; value >= factor - 0.05 && unit + 1 < units.size(); ++unit)
        value /= factor;
    char text[32];
    std::snprintf(text, sizeof text, "%.1f %s", value, units[unit]);
    return text;
}

}  // namespace

std::string decimalByteText(std::uint64_t bytes) {
    return byteText(bytes, 1000, kDecimalUnits);
}

std::string binaryByteText(std::uint64_t bytes) {
    return byteText(bytes, 1024, kBinaryUnits);
}

}  // namespace tav::tool
