// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/CommandError.h"

namespace CLI {
class App;
}

namespace tav::tool {

/// Adds the command that tells what changes, live. It leaves its exit code in `result`.
void addWatchCommand(CLI::App& program, ExitCode& result);

}  // namespace tav::tool
