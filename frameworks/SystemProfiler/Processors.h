// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace systemprofiler {

/// Unknown texts are empty, unknown numbers 0.
struct Processors {
    std::string type;       ///< "Intel(R) Core(TM) i7-4790 CPU @ 3.60GHz"
    uint64_t speedMHz = 0;  ///< what it is sold for, else the most it can
    uint64_t count = 0;     ///< of processors that run, as the kernel counts them
    uint64_t cores = 0;     ///< of which several may be threads of one core
    uint64_t packages = 0;
};

/// What the kernel says of the processors that run. Of different ones the first is described, with
/// the speed of the fastest. `root` is the folder that stands for "/".
Processors readProcessors(const std::string& root = "");

/// "2.66 GHz", "800 MHz": in GHz only where a reader who multiplies it gets the same number back.
/// Empty for 0.
std::string speedText(uint64_t megahertz);

}  // namespace systemprofiler
