// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/CommandError.h"

namespace CLI {
class App;
}

namespace tav::tool {

/// Adds the command that says what is wrong with the host. It leaves its exit code in `result`.
void addDoctorCommand(CLI::App& program, ExitCode& result);

}  // namespace tav::tool
