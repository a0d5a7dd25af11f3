// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/doctor/Check.h"

namespace tav::tool::doctor {

/// Whether the mounts that depend on a server or on another process answer.
Check mountsCheck();

}  // namespace tav::tool::doctor
