// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/CommandError.h"

namespace CLI {
class App;
}

namespace tav::tool {

/// Adds the command that lists cameras and cards and brings pictures over. It leaves its exit code
/// in `result`.
void addCamerasCommand(CLI::App& program, ExitCode& result);

}  // namespace tav::tool
