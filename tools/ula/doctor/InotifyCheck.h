// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/doctor/Check.h"

namespace tav::tool::doctor {

/// Whether the kernel lets this user watch as many folders as a desktop's programs need.
Check inotifyCheck();

}  // namespace tav::tool::doctor
