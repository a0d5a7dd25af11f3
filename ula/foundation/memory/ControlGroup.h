// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/Export.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tav::memory {

/// What the control groups of this process leave it of the machine, as in a container or in a slice
/// of a service. Nothing stands for no limit.
struct ControlGroupLimits {
    std::optional<std::uint64_t> memory;  ///< Units: bytes
    /// Units: bytes. Memory that holds files which can be read again counts as left.
    std::optional<std::uint64_t> memoryLeft;
    std::optional<double> processors;  ///< 1.5: three quarters of two

    bool operator==(const ControlGroupLimits&) const = default;
};

/// The tightest limits of the process's groups and of those that they lie in, of both versions of
/// control groups. `root` is the folder that stands for "/".
/// Fails: what cannot be read is no limit; not logged.
/// Thread: any.
TAV_FOUNDATION_API ControlGroupLimits readControlGroupLimits(const std::string& root = "");

}  // namespace tav::memory
