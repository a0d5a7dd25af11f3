// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/Export.h"

#include <cstdint>

namespace tav::memory {

/// Facts about the machine's memory, read afresh at each call. Units: bytes.
class TAV_FOUNDATION_API SystemMem {
public:
    /// Physical memory that the system manages. Fails: 0.
    static std::uint64_t MemGetPhysicalMemSize();
    /// What this process could still be given: available memory and free swap, or less where
    /// the process's address space is limited. Fails: 0.
    static std::uint64_t MemGetAvailVirtualMemSize();
    /// Physical memory, or less where the process's control groups limit it. Fails: 0.
    static std::uint64_t MemGetEffectiveMemSize();
    /// As `MemGetAvailVirtualMemSize`, or less where the process's control groups leave less.
    static std::uint64_t MemGetEffectiveAvailMemSize();
};

}  // namespace tav::memory
