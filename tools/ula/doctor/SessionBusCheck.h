// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/doctor/Check.h"

namespace tav::tool::doctor {

/// Whether the programs of the session can reach each other.
Check sessionBusCheck();

}  // namespace tav::tool::doctor
