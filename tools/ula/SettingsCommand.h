// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/CommandError.h"

#include <string>

namespace CLI {
class App;
}

namespace tav::tool {

/// Adds `settings` and its verbs to the program. When one of them was on the command line it runs
/// at the end of parsing and leaves its exit code in `result`, which must outlive `program`.
void addSettingsCommand(CLI::App& program, ExitCode& result);

/// Protects an argument from the argument parser, which takes [a,b] for two values and {} for
/// none, and takes the protection off again.
std::string protectArgument(const std::string& argument);
std::string unprotectArgument(const std::string& argument);

}  // namespace tav::tool
