// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/CommandError.h"

namespace CLI {
class App;
}

namespace tav::tool {

/// Adds `settings` and its verbs to the program. When one of them was on the command line it runs
/// at the end of parsing and leaves its exit code in `result`, which must outlive `program`.
void addSettingsCommand(CLI::App& program, ExitCode& result);

}  // namespace tav::tool
