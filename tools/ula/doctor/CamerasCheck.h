// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/doctor/Check.h"

namespace tav::tool::doctor {

/// Whether the cameras that are connected by USB can be used: this user's rights, and programs that
/// have them open.
Check camerasCheck();

}  // namespace tav::tool::doctor
