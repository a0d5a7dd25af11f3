// SPDX-License-Identifier: MIT
// Programs that the platform has and that are these frameworks' here: open, hdiutil, xattr.
#pragma once

#include <string>

namespace appkit {

// The program of that name in the folder "ula" beside this library. Empty where there is none, and
// for all other names. A name may be that of the platform's own place, "/usr/bin/open".
std::string platformProgram(const std::string& name);

// A shell's script with our programs in place of the platform's, wherever their names are commands.
// Names in quotes and names that are arguments stay.
std::string withPlatformPrograms(const std::string& script);

}  // namespace appkit
