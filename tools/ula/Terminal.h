// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace tav::tool {

/// True for a descriptor that is a terminal on which lines can be redrawn.
bool isTerminal(int descriptor);
/// Whether standard output is a terminal whose user has not asked for no colours (NO_COLOR).
bool wantsColours();
/// The columns of the terminal behind standard output; 0 when it is none.
std::size_t outputColumns();

/// Escape sequences, or empty texts.
struct Colours {
    const char* bold = "";
    const char* dim = "";
    const char* red = "";
    const char* green = "";
    const char* yellow = "";
    const char* plain = "";
};
/// The colours for standard output.
Colours outputColours();

}  // namespace tav::tool
