// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/doctor/Check.h"

namespace tav::tool::doctor {

/// Whether the X server of the session takes this user's windows.
Check displayCheck();

}  // namespace tav::tool::doctor
