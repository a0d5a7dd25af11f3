// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/doctor/Check.h"

namespace tav::tool::doctor {

/// Whether files can go to the user's trash. What is written to find out leaves nothing.
Check trashCheck();

}  // namespace tav::tool::doctor
