// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>

namespace cf {

/// What guards the texts of CFSTR. Nothing else is locked under it.
std::mutex& constantStringsLock();

}  // namespace cf
