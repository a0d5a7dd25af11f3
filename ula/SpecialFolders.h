// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"
#include "ula/FastString.h"

namespace tav::ula {

/// Where the well-known folders lie.
/// Thread: any.
class ULA_API SpecialFolders {
public:
    /// The user's home folder, without a slash at its end.
    static FastString home();
};

}  // namespace tav::ula
