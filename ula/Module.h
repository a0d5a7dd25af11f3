// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"
#include "ula/FastString.h"

namespace tav::ula {

/// A loaded bundle of the running application: its main one, a plug-in or a framework. Where a
/// pointer to one is asked for, null stands for the main bundle.
class ULA_API Module {
public:
    /// Without a slash at its end. Of a program that lies in no bundle, its own path.
    virtual FastString getPath() const = 0;
    virtual ~Module();
};

}  // namespace tav::ula
