// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/doctor/Check.h"

namespace tav::tool::doctor {

/// Whether the locales that the environment names are installed, and in UTF-8.
Check localeCheck();

}  // namespace tav::tool::doctor
