// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/doctor/Check.h"

#include <chrono>
#include <vector>

namespace tav::tool::doctor {

/// All at once, each in a thread of its own. Returns no later than after `patience`; threads of
/// checks that have found nothing by then are left behind.
std::vector<Finding> runChecks(const std::vector<Check>& checks, const Host& host,
                               std::chrono::milliseconds patience);

}  // namespace tav::tool::doctor
