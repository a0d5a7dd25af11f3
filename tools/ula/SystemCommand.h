// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/CommandError.h"

namespace CLI {
class App;
}

namespace tav::tool {

/// Adds the command that tells facts about the system and the machine. It leaves its exit code in
/// `result`.
void addSystemCommand(CLI::App& program, ExitCode& result);

}  // namespace tav::tool
