// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/CommandError.h"

namespace CLI {
class App;
}

namespace tav::tool {

/// Adds the command that shows where the well-known folders lie. It leaves its exit code in
/// `result`.
void addFoldersCommand(CLI::App& program, ExitCode& result);

}  // namespace tav::tool
