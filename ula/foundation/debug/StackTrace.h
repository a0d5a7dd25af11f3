// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/Export.h"

#include <array>
#include <cstddef>
#include <string>

namespace tav::debug {

/// The calls that led to a place. Capturing is cheap; the names are looked up by `toString`.
class TAV_FOUNDATION_API StackTrace {
public:
    /// The calling thread's stack, without this function's own frame.
    static StackTrace capture();

    /// One frame a line, innermost first: number, function (as C++ spells it), and file and line
    /// where debug information has them, else the module. Also names functions that are not
    /// exported, from the modules' symbol tables.
    /// Thread: any; one at a time looks names up.
    std::string toString() const;

private:
    static constexpr std::size_t kDeepest = 64;

    std::array<void*, kDeepest> _frames{};
    std::size_t _count = 0;
};

}  // namespace tav::debug
