// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/doctor/Check.h"

namespace tav::tool::doctor {

/// Whether the start-up disk and every volume have their names in /Volumes.
Check volumesCheck();

}  // namespace tav::tool::doctor
