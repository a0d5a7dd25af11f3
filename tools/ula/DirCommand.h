// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/CommandError.h"

namespace CLI {
class App;
}

namespace tav::tool {

/// Adds the command for the contents of folders. It leaves its exit code in `result`.
void addDirCommand(CLI::App& program, ExitCode& result);

}  // namespace tav::tool
