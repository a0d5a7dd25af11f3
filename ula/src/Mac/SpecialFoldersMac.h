// SPDX-License-Identifier: MIT
#pragma once

#include "ula/FastString.h"

namespace tav::ula {

/// The platform's answers for `SpecialFolders`.
class SpecialFoldersMac {
public:
    static FastString home();
};

}  // namespace tav::ula
