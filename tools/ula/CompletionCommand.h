// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/CommandError.h"

namespace CLI {
class App;
}

namespace tav::tool {

/// Adds `ula completion`, and for whoever makes packages the hidden `ula manuals`, to the program.
/// To be called last: they describe what is there.
void addCompletionCommand(CLI::App& program, ExitCode& result);

}  // namespace tav::tool
