// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/CommandError.h"

namespace CLI {
class App;
}

namespace tav::tool {

/// `ula secret …`
void addSecretCommand(CLI::App& program, ExitCode& result);

}  // namespace tav::tool
