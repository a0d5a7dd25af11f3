// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/CommandError.h"

namespace CLI {
class App;
}

namespace tav::tool {

/// Adds the command for moving files to the trash and back. It leaves its exit code in `result`.
void addTrashCommand(CLI::App& program, ExitCode& result);

}  // namespace tav::tool
