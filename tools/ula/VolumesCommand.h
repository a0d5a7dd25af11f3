// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/CommandError.h"

namespace CLI {
class App;
}

namespace tav::tool {

/// Adds the command for the folder of volumes. It leaves its exit code in `result`.
void addVolumesCommand(CLI::App& program, ExitCode& result);

}  // namespace tav::tool
