// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/doctor/Check.h"

namespace tav::tool::doctor {

/// Whether the clock is right: not before the program's own file was made, and kept by a time
/// server.
Check clockCheck();

}  // namespace tav::tool::doctor
