// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/doctor/Check.h"

namespace tav::tool::doctor {

/// Whether the desktop keeps passwords. Where it does not, the library's encrypted file does.
Check secretServiceCheck();

}  // namespace tav::tool::doctor
