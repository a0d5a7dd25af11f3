// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"
#include "ula/FastString.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace tav::ula {

struct CPUInfo {
    FastString description = FastString::literal("Unknown");
    /// What the library was built for: "x86_64".
    FastString architecture = FastString::literal("Unknown");
    FastString type = FastString::literal("Unknown");
    std::uint64_t speedMHz = 0;
    std::int64_t count = 0;  ///< of processors
};

struct VideoControllerInfo {
    FastString model;
    FastString details;
    /// Units: bytes. 0 also where it is part of the main memory.
    std::uint64_t videoMemory = 0;
};

struct DisplayInfo {
    std::int32_t width = 0;   ///< of the working area; units: pixels
    std::int32_t height = 0;  ///< of the working area; units: pixels
    std::int64_t bitsPerPixel = 0;
    bool isPrimary = false;
};

/// Physical memory, and the virtual memory that is available. Units: bytes.
using MemInfo = std::pair<std::uint64_t, std::uint64_t>;

/// Has no fields yet.
struct HDDRecord {};
using HDDInfo = std::vector<HDDRecord>;

/// Facts about the machine, asked afresh at each call. Texts are UTF-8.
/// Fails: what is not known has the record's default. Of what the report says and is not understood
/// there is a line in the log.
/// Thread: any.
class ULA_API SystemInformation {
public:
    /// One record. Makes the system's report of its hardware, which on some systems runs a program:
    /// not for loops.
    static std::vector<CPUInfo> getCPUInfo();
    /// One record, of the graphics device that the machine starts with. As `getCPUInfo`.
    static std::vector<VideoControllerInfo> getVideoControllerInfo();
    /// Of each screen, in the order of `Screen::getAllScreens`.
    static std::vector<DisplayInfo> getDisplayInfo();
    static MemInfo getMemInfo();
    /// Always empty.
    static HDDInfo getHDDInfo();

    /// How many threads of this process can run at the same time: less than the machine's
    /// processors where it is bound to some of them, or a container or service has a share of their
    /// time only.
    static std::int64_t getEffectiveCPUCount();
    /// As `getMemInfo`, or less where a container or service is limited to it.
    static MemInfo getEffectiveMemInfo();
};

}  // namespace tav::ula
