// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/Export.h"

namespace tav::debug {

/// Logs, with a stack trace, the text
/// "assertion failed " source ":" line and the condition in double quotes, and returns: an
/// assertion never stops the program. `source` and `line` are fixed names of the place, the same
/// whatever file the check has moved to.
/// Thread: any.
TAV_FOUNDATION_API void assertionFailed(const char* source, int line, const char* condition);

}  // namespace tav::debug
