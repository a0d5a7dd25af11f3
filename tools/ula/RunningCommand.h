// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/CommandError.h"

namespace CLI {
class App;
}

namespace tav::tool {

/// Adds the command that lists running applications. It leaves its exit code in `result`.
void addRunningCommand(CLI::App& program, ExitCode& result);

}  // namespace tav::tool
