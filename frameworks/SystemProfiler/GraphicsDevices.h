// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace systemprofiler {

enum class VideoMemory { Unknown, Own, Shared };

struct GraphicsDevice {
    std::string model;
    std::string driver;  ///< the kernel's name for it; empty without one
    VideoMemory memory = VideoMemory::Unknown;
    uint64_t memorySize = 0;  ///< of its own memory
};

/// The machine's graphics devices, best first: the one that the firmware draws on, then those with
/// a display. They are the kernel's own (DRM), so that no display server need run; without any, the
/// display controllers on the PCI bus. `root` is the folder that stands for "/".
std::vector<GraphicsDevice> readGraphicsDevices(const std::string& root = "");

/// "512 MB", "8 GB", "spdisplays_integrated_vram" for memory that is shared with the processors;
/// empty for unknown memory and for less than a megabyte.
std::string videoMemoryText(const GraphicsDevice& device);

}  // namespace systemprofiler
